#include <kestan/engine/white_space.h>
#include <kestan/indexing/document_words.h>

namespace kestan {
namespace {

String Fold(std::string_view text) {
  String folded(text);
  for (char& byte : folded) byte = static_cast<char>(byte | 0x20);
  return folded;
}

}  // namespace

DocumentWords::DocumentWords(std::string_view text) : text_(text), folded_(Fold(text)) {
  std::size_t start = 0;
  for (std::size_t i = 0; i < text_.size(); ++i) {
    if (!IsWhiteSpace(text_[i])) continue;
    RecordWord(start, i);
    start = i + 1;
  }
  RecordWord(start, text_.size());
}

// Records the bytes from `start` up to `end`, unless there are none.
void DocumentWords::RecordWord(std::size_t start, std::size_t end) {
  if (start == end) return;
  const std::string_view word = std::string_view(text_).substr(start, end - start);
  const std::string_view folded = std::string_view(folded_).substr(start, end - start);
  table_[word].push_back(next_position_);
  if (folded != word) table_[folded].push_back(next_position_);
  if (++next_position_ == 0) next_position_ = 1;  // 0 means that a position is not known
}

}  // namespace kestan
