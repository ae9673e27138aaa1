// SPDX-License-Identifier: GPL-3.0-or-later
// Ignore files as slowly and as plainly as they can be read, to compare with.
#ifndef KESTAN_TESTS_CLI_FILES_IGNORE_PLAIN_IGNORE_H_
#define KESTAN_TESTS_CLI_FILES_IGNORE_PLAIN_IGNORE_H_

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace kestan_tests {

// Matches all of `text` with all of `pattern` by trying everything. `is_start` is whether the
// pattern is at the start of a name. Its sets hold plain bytes and ranges, without a backslash.
inline bool PlainMatch(const std::string& pattern, const std::string& text, bool is_start = true) {
  if (pattern.empty()) return text.empty();
  const std::size_t stars = std::min(pattern.find_first_not_of('*'), pattern.size());
  const bool is_deep = is_start && stars > 1;
  if (is_deep && pattern.size() == stars) return !text.empty();
  if (is_deep && pattern[stars] == '/') {
    if (PlainMatch(pattern.substr(stars + 1), text)) return true;
    const std::size_t slash = text.find('/');
    return slash != std::string::npos && PlainMatch(pattern, text.substr(slash + 1));
  }
  if (pattern[0] == '*') {
    if (PlainMatch(pattern.substr(1), text, false)) return true;
    return !text.empty() && text[0] != '/' && PlainMatch(pattern, text.substr(1), false);
  }
  if (text.empty()) return false;
  const std::string rest = text.substr(1);
  if (pattern[0] == '?') return text[0] != '/' && PlainMatch(pattern.substr(1), rest, false);
  if (pattern[0] == '\\') {
    return pattern.size() > 1 && pattern[1] == text[0] &&
           PlainMatch(pattern.substr(2), rest, text[0] == '/');
  }
  if (pattern[0] == '[') {
    const bool is_negated = pattern.size() > 1 && (pattern[1] == '!' || pattern[1] == '^');
    const std::size_t first = is_negated ? 2 : 1;
    const std::size_t end = pattern.find(']', first + 1);
    if (end == std::string::npos || text[0] == '/') return false;
    bool is_in = false;
    for (std::size_t i = first; i < end; ++i) {
      const bool is_range = i + 2 < end && pattern[i + 1] == '-';
      const char high = is_range ? pattern[i + 2] : pattern[i];
      is_in = is_in || (pattern[i] <= text[0] && text[0] <= high);
      if (is_range) i += 2;
    }
    return is_in != is_negated && PlainMatch(pattern.substr(end + 1), rest, false);
  }
  return pattern[0] == text[0] && PlainMatch(pattern.substr(1), rest, text[0] == '/');
}

// Returns whether the line `line`, without its "!", matches `path`.
inline bool PlainLineMatches(std::string line, const std::string& path, bool is_folder) {
  if (line.empty() || line[0] == '#') return false;
  if (line[0] == '!') line.erase(0, 1);
  if (!line.empty() && line.back() == '/') {
    if (!is_folder) return false;
    line.pop_back();
  }
  if (line.empty()) return false;
  // A name has no "**": its stars are one.
  if (line.find('/') == std::string::npos) {
    return PlainMatch(line, path.substr(path.rfind('/') + 1), false);
  }
  return PlainMatch(line[0] == '/' ? line.substr(1) : line, path);
}

// Returns whether the last of `lines` that matches leaves out `path`. Lines end without blanks.
inline bool PlainIsIgnored(const std::vector<std::string>& lines, const std::string& path,
                           bool is_folder) {
  bool is_ignored = false;
  for (const std::string& line : lines) {
    if (PlainLineMatches(line, path, is_folder)) is_ignored = line[0] != '!';
  }
  return is_ignored;
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_CLI_FILES_IGNORE_PLAIN_IGNORE_H_
