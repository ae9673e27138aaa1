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

}  // namespace

std::vector<Fragment> MakeSnippet(std::string_view text,
                                  const std::set<std::string>& matched_terms) {
  const std::vector<TermMatch> matches = FindTerms(text, matched_terms);
  if (matches.empty()) return {};
  const Window best = BestWindow(matches, kSnippetBytes);
  const std::size_t first = matches[best.first].start;
  const std::size_t last = matches[best.last - 1].end;
  const std::size_t span = std::min(last - first, kSnippetBytes);
  const std::size_t start = StartBefore(text, first, (kSnippetBytes - span) / 2);
  const std::size_t end = EndAfter(text, last, (kSnippetBytes - span) / 2);
  FragmentLine line;
  if (start > 0) line.Add(kGap, false);
  std::size_t at = start;
  for (std::size_t i = best.first; i < best.last; ++i) {
    line.Add(text.substr(at, matches[i].start - at), false);
    line.Add(text.substr(matches[i].start, matches[i].end - matches[i].start), true);
    at = matches[i].end;
  }
  line.Add(text.substr(at, end - at), false);
  if (end < text.size()) line.Add(kGap, false);
  return line.Take();
}

}  // namespace kestan::search
