// The result sets of the engine.
#ifndef KESTAN_SEARCH_QUERY_EVALUATION_RESULT_SET_H_
#define KESTAN_SEARCH_QUERY_EVALUATION_RESULT_SET_H_

#include <kestan/results.h>

#include <cstddef>
#include <string_view>
#include <utility>

namespace kestan::search {

// Owns a result set of the engine and frees it.
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

  // Calls `visit(match)` for each match but those of removed documents, in ascending order of
  // codes.
  template <typename Visit>
  void ForEachMatch(Visit visit) const {
    kestan::IndexReader& reader = ReaderOf(*engine_);
    for (const Match match : MatchesOf(id_)) {
      if (!reader.IsRemoved(match.code)) visit(match);
    }
  }

  // Calls `visit(match, name)` for each of these whose code has a document. Lends the name.
  template <typename Visit>
  void ForEachDocument(Visit visit) const {
    kestan::IndexReader& reader = ReaderOf(*engine_);
    ForEachMatch([&](const Match& match) {
      const std::string_view name = reader.NameOf(match.code);
      if (name.data() != nullptr) visit(match, name);
    });
  }

  std::size_t CountDocuments() const {
    std::size_t count = 0;
    ForEachDocument([&count](const Match&, std::string_view) { ++count; });
    return count;
  }

 private:
  Kestan* engine_;
  int id_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_EVALUATION_RESULT_SET_H_
