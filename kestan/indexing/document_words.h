// The words of one document's text with their positions.
#ifndef KESTAN_INDEXING_DOCUMENT_WORDS_H_
#define KESTAN_INDEXING_DOCUMENT_WORDS_H_

#include <kestan/engine/records.h>
#include <kestan/storage/memory.h>

#include <cstddef>
#include <functional>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace kestan {

// Splits a text at white space. Each word is recorded as it stands and, where that differs, folded:
// with bit 5 set in every byte, which makes capital letters small (and '@' a '`'). Both forms get
// the same position.
class DocumentWords {
 public:
  // A distinct word and its positions in the order of the text.
  using Table = std::unordered_map<std::string_view, Vector<Position>, std::hash<std::string_view>,
                                   std::equal_to<>,
                                   Allocator<std::pair<const std::string_view, Vector<Position>>>>;

  // Copies `text`.
  explicit DocumentWords(std::string_view text);

  // The words look at memory of this object.
  const Table& table() const { return table_; }

 private:
  void RecordWord(std::size_t start, std::size_t end);

  const String text_;
  const String folded_;  // the same bytes, folded, at the same places
  Position next_position_ = 1;
  Table table_;
};

}  // namespace kestan

#endif  // KESTAN_INDEXING_DOCUMENT_WORDS_H_
