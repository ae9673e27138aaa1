// SPDX-License-Identifier: GPL-3.0-or-later
// The words of one document's text with their positions.
#ifndef KESTAN_INDEXING_TOKENIZER_H_
#define KESTAN_INDEXING_TOKENIZER_H_

#include <kestan/format/posting.h>
#include <kestan/storage/export.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace kestan {

// Splits a text at white space (the six bytes that the C locale has). Each word is recorded as it
// stands and, where that differs, case-folded: with bit 5 set in every byte, which makes capital
// letters lower case (and '@' a '`'). Both forms get the same position. These are the words and
// positions that class Kestan indexes, but its texts end at a NUL, which is a byte like any other
// here.
class KESTAN_EXPORT Tokenizer {
 public:
  struct Word {
    std::string_view bytes;
    Positions positions;
    std::uint32_t hash;  // of the bytes; another one in each process
  };

  // Words side by side in memory of the tokenizer.
  class Words {
   public:
    Words(const Word* first, std::size_t count) : first_(first), count_(count) {}
    const Word* begin() const { return first_; }
    const Word* end() const { return first_ + count_; }
    std::size_t size() const { return count_; }

   private:
    const Word* first_;
    std::size_t count_;
  };

  // Copies `text`.
  explicit Tokenizer(std::string_view text);
  ~Tokenizer();
  Tokenizer(const Tokenizer&) = delete;
  Tokenizer& operator=(const Tokenizer&) = delete;

  // Each distinct word, in the order in which they come first. They look at memory of this object.
  Words words() const;

  // Returns how many words the text has, each as often as it occurs. Folded forms do not count.
  std::size_t CountWords() const;

 private:
  class Table;
  std::unique_ptr<const Table> table_;
};

}  // namespace kestan

#endif  // KESTAN_INDEXING_TOKENIZER_H_
