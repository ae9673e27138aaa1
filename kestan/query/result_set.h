// Result sets: the documents that matched, each with a score and the positions where it matched.
#ifndef KESTAN_QUERY_RESULT_SET_H_
#define KESTAN_QUERY_RESULT_SET_H_

#include <kestan/engine/records.h>
#include <kestan/storage/memory.h>

#include <cstddef>
#include <cstdint>

namespace kestan {

using Score = std::uint16_t;
inline constexpr std::uint32_t kMaxScore = 65535;

// The positions at which one document matched, in the order of the operation that found them. 0
// means that the position is not known.
struct Positions {
  const Position* begin() const { return first; }
  const Position* end() const { return first + count; }

  const Position* first;
  std::uint16_t count;
};

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

  // Adds a document with the positions given.
  void Add(Code code, Score score, Positions positions);

  // Puts the documents in order. Of those with one code only the first that was added stays.
  void Sort();

  // Makes room for this many documents and positions in all.
  void Reserve(std::size_t documents, std::size_t positions);

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
