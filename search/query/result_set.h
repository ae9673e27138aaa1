// What the engine answers queries with.
#ifndef KESTAN_SEARCH_QUERY_RESULT_SET_H_
#define KESTAN_SEARCH_QUERY_RESULT_SET_H_

#include <kestan/kestan.h>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace kestan::search {

// A result set of the engine's, freed when it goes.
class ResultSet {
 public:
  // The id of a set without documents: the engine answers with it for a word that the index lacks,
  // and takes it like any other.
  static constexpr int kNoDocuments = -1;

  // Borrows `engine` and takes the set `id`.
  ResultSet(Kestan& engine, int id) : engine_(&engine), id_(id) {}
  ~ResultSet() { engine_->FreeQueryResult(id_); }
  ResultSet(ResultSet&& other) noexcept
      : engine_(other.engine_), id_(std::exchange(other.id_, kNoDocuments)) {}
  ResultSet& operator=(ResultSet&& other) noexcept {
    std::swap(engine_, other.engine_);
    std::swap(id_, other.id_);
    return *this;
  }

  int id() const { return id_; }

  // Returns the engine's listing, in its scratch buffer.
  const char* Listing() const { return engine_->QueryResults(id_); }

  // Returns how many documents are listed.
  std::size_t CountDocuments() const {
    const std::string_view listing = Listing();
    return static_cast<std::size_t>(std::count(listing.begin(), listing.end(), '\n'));
  }

 private:
  Kestan* engine_;
  int id_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_RESULT_SET_H_
