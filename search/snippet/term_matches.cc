// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/snippet/term_matches.h"

#include <algorithm>

#include "search/text/analyzer/analysis.h"
#include "search/text/letters.h"
#include "search/text/utf8.h"
#include "search/text/words.h"

namespace kestan::search {
namespace {

constexpr std::size_t kMaxWordBytes = 96;

bool IsLetter(char byte) { return IsAsciiLetter(byte) || !IsAscii(byte); }

// Finds the term that a word of a text matches.
class TermMatcher {
 public:
  // Borrows `terms`.
  explicit TermMatcher(const Terms& terms) : terms_(terms) {}

  // Returns the term, empty if `word` matches none.
  std::string_view Find(std::string_view word) const {
    if (std::all_of(word.begin(), word.end(), IsAsciiLetter)) return FindAnyCase(word);
    for (const std::string& indexed : IndexedWords(word)) {
      const std::string_view found = FindAnyCase(indexed);
      if (!found.empty()) return found;
    }
    return {};
  }

 private:
  std::string_view FindAnyCase(std::string_view word) const {
    const std::string indexed(word.substr(0, kMaxWordLetters));
    auto found = terms_.find(indexed);
    if (found == terms_.end()) found = terms_.find(LowerCase(indexed));
    return found == terms_.end() ? std::string_view() : std::string_view(*found);
  }

  const Terms& terms_;
};

// Returns where the word that begins at `start` ends. Apostrophes between letters belong to it.
// In scripts without blanks a paragraph would be one word: such words end at kMaxWordBytes.
std::size_t EndOfWord(std::string_view text, std::size_t start) {
  std::size_t end = start;
  while (end < text.size()) {
    if (end - start >= kMaxWordBytes && !ContinuesCharacter(text[end])) break;
    const bool joins = text[end] == '\'' && end + 1 < text.size() && IsLetter(text[end + 1]);
    if (!joins && !IsLetter(text[end])) break;
    ++end;
  }
  return end;
}

std::vector<TermMatch> FindAnalyzed(std::string_view text, const Terms& terms) {
  std::vector<TermMatch> matches;
  ForEachAnalyzedWord(text, [&](const AnalyzedWord& word) {
    const auto found = terms.find(word.word);
    if (found != terms.end()) matches.push_back({word.start, word.end, *found});
    return true;
  });
  // Of a word with a dot before it, the one without comes first.
  std::stable_sort(
      matches.begin(), matches.end(),
      [](const TermMatch& left, const TermMatch& right) { return left.start < right.start; });
  return matches;
}

}  // namespace

std::vector<TermMatch> FindTerms(std::string_view text, const Terms& terms, TextRules rules) {
  if (rules == TextRules::kAnalyzer) return FindAnalyzed(text, terms);
  const TermMatcher matcher(terms);
  std::vector<TermMatch> matches;
  for (std::size_t at = 0; at < text.size();) {
    if (!IsLetter(text[at])) {
      ++at;
      continue;
    }
    const std::size_t end = EndOfWord(text, at);
    const std::string_view term = matcher.Find(text.substr(at, end - at));
    if (!term.empty()) matches.push_back({at, end, term});
    at = end;
  }
  return matches;
}

}  // namespace kestan::search
