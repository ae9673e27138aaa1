// Result sets: the documents that matched, each with a score and the positions where it matched.
#ifndef KESTAN_QUERY_RESULT_SET_H_
#define KESTAN_QUERY_RESULT_SET_H_

#include <kestan/engine/records.h>
#include <kestan/storage/memory.h>

#include <cstddef>
#include <cstdint>
#include <utility>

namespace kestan {

using Score = std::uint16_t;
inline constexpr std::uint32_t kMaxScore = 65535;

// Documents in ascending order of their codes. All positions of a set lie in one block of memory.
class ResultSet {
 public:
  struct Document {
    Code code;
    Score score;
    std::uint16_t count;  // of its positions
    std::uint32_t first;  // the index of the first one
  };

  // Adds a document with room for `count` positions. Unless codes come in ascending order, Sort()
  // must follow the last one.
  //   Returns  where the positions go. Valid until the next call.
  Position* Add(Code code, Score score, std::uint16_t count);

  // Adds a document with the positions given, at most 65535.
  void Add(Code code, Score score, Positions positions);

  // Takes `units` as the block of positions of a set that has none yet, and adds a document whose
  // positions stand in it already, from `first` on. Documents may share them.
  void TakePositions(Vector<Position> units) { positions_ = std::move(units); }
  void AddTaken(Code code, Score score, std::size_t first, std::uint16_t count) {
    documents_.push_back({code, score, count, static_cast<std::uint32_t>(first)});
  }

  // Adds a document that matched at a place that is not known, to a set that has only such
  // documents.
  void AddUnplaced(Code code, Score score) {
    if (positions_.empty()) positions_.push_back(0);
    AddTaken(code, score, 0, 1);
  }

  // Puts the documents in order. Of those with one code only the first that was added stays.
  void Sort();

  const Vector<Document>& documents() const { return documents_; }

  // Returns the positions of a document of this set. Valid until the next Add().
  Positions PositionsOf(const Document& document) const {
    return {positions_.data() + document.first, document.count};
  }

 private:
  Vector<Document> documents_;
  Vector<Position> positions_;
};

// Registers `set`, which it takes; a set lives until Kestan::FreeQueryResult.
//   Returns  its id.
int AddQueryResult(ResultSet* set);

// Returns the set of `id`, null if there is none.
const ResultSet* FindQueryResult(int id);

}  // namespace kestan

#endif  // KESTAN_QUERY_RESULT_SET_H_
