// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/snippet/snippet.h"

#include <algorithm>

#include "search/snippet/term_matches.h"
#include "search/snippet/window.h"
#include "search/text/white_space.h"

namespace kestan::search {
namespace {

constexpr std::string_view kGap = "...";

// Returns where to begin so that about `bytes` of `text` precede `at`: where a word begins.
std::size_t StartBefore(std::string_view text, std::size_t at, std::size_t bytes) {
  if (at <= bytes) return 0;
  for (std::size_t start = at - bytes; start < at; ++start) {
    if (IsBlankOrControl(text[start - 1]) && !IsBlankOrControl(text[start])) return start;
  }
  return at;
}

// Returns where to end so that about `bytes` of `text` follow `at`: where a word ends.
std::size_t EndAfter(std::string_view text, std::size_t at, std::size_t bytes) {
  if (text.size() - at <= bytes) return text.size();
  for (std::size_t end = at + bytes; end > at; --end) {
    if (IsBlankOrControl(text[end]) && !IsBlankOrControl(text[end - 1])) return end;
  }
  return at;
}

// Returns where the last of the matches in `window` ends; the last to begin need not be that.
std::size_t LastEnd(const std::vector<TermMatch>& matches, const Window& window) {
  std::size_t end = 0;
  for (std::size_t i = window.first; i < window.last; ++i) end = std::max(end, matches[i].end);
  return end;
}

}  // namespace

std::vector<Fragment> MakeSnippet(std::string_view text, const Terms& matched_terms,
                                  TextRules rules) {
  const std::vector<TermMatch> matches = FindTerms(text, matched_terms, rules);
  if (matches.empty()) return {};
  const Window best = BestWindow(matches, kSnippetBytes);
  const std::size_t first = matches[best.first].start;
  const std::size_t last = LastEnd(matches, best);
  const std::size_t span = std::min(last - first, kSnippetBytes);
  const std::size_t start = StartBefore(text, first, (kSnippetBytes - span) / 2);
  const std::size_t end = EndAfter(text, last, (kSnippetBytes - span) / 2);
  FragmentLine line;
  if (start > 0) line.Add(kGap, false);
  std::size_t at = start;
  for (std::size_t i = best.first; i < best.last;) {
    const std::size_t begin = matches[i].start;
    line.Add(text.substr(at, begin - at), false);
    at = matches[i].end;
    while (++i < best.last && matches[i].start < at) at = std::max(at, matches[i].end);
    line.Add(text.substr(begin, at - begin), true);
  }
  line.Add(text.substr(at, end - at), false);
  if (end < text.size()) line.Add(kGap, false);
  return line.Take();
}

}  // namespace kestan::search
