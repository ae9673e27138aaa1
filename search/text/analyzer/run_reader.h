// SPDX-License-Identifier: GPL-3.0-or-later
// Words with characters beyond ASCII.
#ifndef KESTAN_SEARCH_TEXT_ANALYZER_RUN_READER_H_
#define KESTAN_SEARCH_TEXT_ANALYZER_RUN_READER_H_

#include <cstddef>
#include <string_view>

#include "search/text/analyzer/word_sink.h"

namespace kestan::search {

// Reads the runs of a text in which words are found together: letters and digits; Chinese and
// Japanese; scripts whose words a dictionary tells apart.
class RunReader {
 public:
  // Borrows both.
  RunReader(std::string_view text, WordSink* sink) : text_(text), sink_(sink) {}

  // Returns whether a word goes on at the byte `at`, which is beyond ASCII, after letters or digits
  // of ASCII.
  bool ContinuesWord(std::size_t at) const;

  // Hands the words of the run that begins at `start` to the sink. There is a character beyond
  // ASCII, or a letter or digit before one that goes on with the word.
  //   Returns  where the run ends; after a character that belongs to no run, that character does.
  //   Throws   TransliterationError, std::bad_alloc.
  std::size_t Read(std::size_t start);

 private:
  std::size_t EndOfLetters(std::size_t at) const;
  std::size_t EndOfMarks(std::size_t at) const;
  std::size_t ReadLetters(std::size_t start);
  std::size_t ReadPairs(std::size_t start);
  std::size_t ReadUnspaced(std::size_t start);
  void TakeWords(std::string_view words, std::size_t start, std::size_t end);

  const std::string_view text_;
  WordSink* const sink_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_ANALYZER_RUN_READER_H_
