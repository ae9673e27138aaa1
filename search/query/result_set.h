// Answers of the engine's.
#ifndef KESTAN_SEARCH_QUERY_RESULT_SET_H_
#define KESTAN_SEARCH_QUERY_RESULT_SET_H_

#include <kestan/kestan.h>

#include <utility>

namespace kestan::search {

// A result set of the engine's, freed when it goes. The id -1 stands for a set without documents:
// that is how the engine answers for a word that the index lacks, and how it takes one.
class ResultSet {
 public:
  // Borrows `engine` and takes the set `id`.
  ResultSet(Kestan& engine, int id) : engine_(&engine), id_(id) {}
  ~ResultSet() { engine_->FreeQueryResult(id_); }
  ResultSet(ResultSet&& other) noexcept
      : engine_(other.engine_), id_(std::exchange(other.id_, -1)) {}
  ResultSet& operator=(ResultSet&& other) noexcept {
    std::swap(engine_, other.engine_);
    std::swap(id_, other.id_);
    return *this;
  }

  int id() const { return id_; }

  // Returns the engine's listing, in its scratch buffer.
  const char* Listing() const { return engine_->QueryResults(id_); }

 private:
  Kestan* engine_;
  int id_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_RESULT_SET_H_
