// The words of one document's text with their positions.
#ifndef KESTAN_INDEXING_TOKENIZER_H_
#define KESTAN_INDEXING_TOKENIZER_H_

#include <kestan/format/posting.h>
#include <kestan/storage/hash.h>
#include <kestan/storage/memory.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestan {

// Splits a text at white space. Each word is recorded as it stands and, where that differs,
// case-folded: with bit 5 set in every byte, which makes capital letters lower case (and '@' a
// '`'). Both forms get the same position.
class Tokenizer {
 public:
  struct Word {
    std::string_view bytes;
    Positions positions;
    std::uint32_t hash;
  };

  // Copies `text`.
  explicit Tokenizer(std::string_view text);

  // Each distinct word. They look at memory of this object.
  const Vector<Word>& words() const { return words_; }

 private:
  struct Occurrence {
    std::uint32_t word;  // its index
    Position position;
  };

  void Split();
  void Record(std::string_view word);
  std::uint32_t IndexOf(std::string_view word);
  void GrowTable();
  void SortPositions();

  const Hasher hasher_;
  const String text_;
  String folded_;  // the same bytes, folded, at the same places
  Position next_position_ = 1;
  Vector<Word> words_;
  Vector<std::uint32_t> table_;  // by hash: the index of a word plus 1, or 0
  Vector<Occurrence> occurrences_;
  Vector<Position> positions_;
};

}  // namespace kestan

#endif  // KESTAN_INDEXING_TOKENIZER_H_
