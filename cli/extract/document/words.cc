// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/document/words.h"

#include <kestan/search.h>

#include <algorithm>
#include <cstddef>
#include <unordered_set>

#include "cli/console/message.h"

namespace kestan_cli {
namespace {

using kestan::search::AnalyzedWord;
using kestan::search::Analyzer;

constexpr std::size_t kMostShortLetters = 2;

std::unordered_set<std::string_view> SetOf(std::string_view words) {
  std::unordered_set<std::string_view> set;
  while (!words.empty()) {
    const std::string_view word = words.substr(0, words.find(' '));
    if (!word.empty()) set.insert(word);
    words.remove_prefix(std::min(word.size() + 1, words.size()));
  }
  return set;
}

bool IsShort(std::string_view word) {
  return word.size() <= kMostShortLetters && std::all_of(word.begin(), word.end(), [](char byte) {
           return byte >= 'a' && byte <= 'z';
         });
}

bool IsApostrophe(std::string_view text) { return text == "'" || text == "\u2019"; }

// Gathers the words of a text that are no stop words.
class WordFilter {
 public:
  // Borrows both.
  WordFilter(std::string_view text, std::string_view stop_words)
      : text_(text), stop_words_(SetOf(stop_words)) {}

  void Add(const AnalyzedWord& word) {
    const bool is_divided = word.start > end_ && end_ > 0 &&
                            IsApostrophe(text_.substr(end_, word.start - end_)) &&
                            IsStop(last_ + std::string(word.word));
    if (is_divided) words_.resize(before_last_);
    last_ = word.word;
    end_ = word.end;
    before_last_ = words_.size();
    if (!is_divided && !IsShort(last_) && !IsStop(last_)) words_.append(last_).append(1, ' ');
  }

  std::string Take() { return std::move(words_); }

 private:
  bool IsStop(std::string_view word) const { return stop_words_.count(word) != 0; }

  const std::string_view text_;
  const std::unordered_set<std::string_view> stop_words_;
  std::string words_;
  std::string last_;             // the word before
  std::size_t end_ = 0;          // of it in the text
  std::size_t before_last_ = 0;  // how long `words_` was without it
};

}  // namespace

std::string WordsIn(std::string_view utf8) {
  auto words = Analyzer().Analyze(utf8);
  if (!words.ok()) throw CommandError(words.status().message());
  return std::move(*words);
}

std::string WordsWithout(std::string_view utf8, std::string_view stop_words) {
  WordFilter filter(utf8, stop_words);
  const auto status = Analyzer().ForEachWord(utf8, [&filter](const AnalyzedWord& word) {
    filter.Add(word);
    return true;
  });
  if (!status.ok()) throw CommandError(status.message());
  return filter.Take();
}

}  // namespace kestan_cli
