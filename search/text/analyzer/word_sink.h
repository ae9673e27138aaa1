// SPDX-License-Identifier: GPL-3.0-or-later
// Where the words of a text go.
#ifndef KESTAN_SEARCH_TEXT_ANALYZER_WORD_SINK_H_
#define KESTAN_SEARCH_TEXT_ANALYZER_WORD_SINK_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestan::search {

constexpr std::size_t kMaxWordCharacters = 64;
constexpr std::size_t kMaxWordBytes = kMaxWordCharacters * 5;  // of a word as it is stored

// What a word is of the run of characters that it was found in.
enum class WordPart : std::uint8_t {
  kWhole,
  kPair,       // of neighbours
  kLastOfRun,  // the last character of a run of pairs
  kOnlyOne,    // the only character of what would be a run of pairs
};

class WordSink {
 public:
  // Takes `word`, as it is stored, made of the bytes from `start` to `end` of the text.
  virtual void Take(std::string_view word, std::size_t start, std::size_t end, WordPart part) = 0;

 protected:
  ~WordSink() = default;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_ANALYZER_WORD_SINK_H_
