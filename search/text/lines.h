// Text as lines.
#ifndef KESTAN_SEARCH_TEXT_LINES_H_
#define KESTAN_SEARCH_TEXT_LINES_H_

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

// Returns the lines of `text` without their line feeds. Borrows it.
inline std::vector<std::string_view> LinesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

// Returns copies of the lines, in order of their bytes.
inline std::vector<std::string> SortedLines(std::string_view text) {
  const std::vector<std::string_view> lines = LinesOf(text);
  std::vector<std::string> sorted(lines.begin(), lines.end());
  std::sort(sorted.begin(), sorted.end());
  return sorted;
}

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_LINES_H_
