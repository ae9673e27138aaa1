// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/document/title.h"

#include <algorithm>
#include <cstddef>

#include "cli/extract/charset/ascii.h"

namespace kestan_cli {
namespace {

constexpr std::size_t kMaxHashes = 6;

// Takes the first line off `*text`, without its line feed.
std::string_view TakeLine(std::string_view* text) {
  const std::string_view line = text->substr(0, text->find('\n'));
  text->remove_prefix(std::min(line.size() + 1, text->size()));
  return line;
}

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

bool IsFence(std::string_view line) { return StartsWith(line, "```") || StartsWith(line, "~~~"); }

// Returns the text of the heading "## Text ##"; nothing if `line` is not one.
std::string_view HeadingIn(std::string_view line) {
  const std::size_t hashes = std::min(line.find_first_not_of('#'), line.size());
  if (hashes == 0 || hashes > kMaxHashes) return "";
  line.remove_prefix(hashes);
  if (!line.empty() && line.front() != ' ' && line.front() != '\t') return "";
  line = Trimmed(line);
  const std::string_view without_hashes = line.substr(0, line.find_last_not_of('#') + 1);
  // In "C#" the # belongs to the text.
  const bool closed =
      without_hashes.empty() || kWhiteSpace.find(without_hashes.back()) != std::string_view::npos;
  return closed ? Trimmed(without_hashes) : line;
}

// Returns whether `line` makes the line above it a heading.
bool IsUnderline(std::string_view line) {
  const std::string_view marks = Trimmed(line);
  if (marks.size() < 2 || (marks.front() != '=' && marks.front() != '-')) return false;
  return marks.find_first_not_of(marks.front()) == std::string_view::npos;
}

// Removes the front matter from the start of `*text`, if it has any.
//   Returns  the title in it; nothing if there is none.
std::string_view TakeFields(std::string_view* text) {
  constexpr std::string_view kTitle = "title:";
  constexpr std::string_view kQuotes = "\"'";
  std::string_view rest = *text;
  if (Trimmed(TakeLine(&rest)) != "---") return "";
  std::string_view title;
  while (!rest.empty()) {
    const std::string_view line = Trimmed(TakeLine(&rest));
    if (line == "---" || line == "...") {
      *text = rest;
      return title;
    }
    if (title.empty() && StartsWith(line, kTitle)) title = Trimmed(line.substr(kTitle.size()));
    const bool quoted = title.size() > 1 && title.front() == title.back() &&
                        kQuotes.find(title.front()) != std::string_view::npos;
    if (quoted) title = title.substr(1, title.size() - 2);
  }
  return "";  // a rule, not front matter
}

// Finds the first heading, however far from the start it is.
bool FindHeading(std::string_view text, TitledText* found) {
  std::string_view above;
  bool in_code = false;
  while (!text.empty()) {
    const std::string_view line = TakeLine(&text);
    if (IsFence(Trimmed(line))) in_code = !in_code;
    const std::string_view heading = in_code ? "" : HeadingIn(line);
    const bool underlined = !in_code && !above.empty() && IsUnderline(line);
    if (!heading.empty() || underlined) {
      *found = {underlined ? above : heading, text};
      return true;
    }
    above = in_code ? "" : Trimmed(line);
  }
  return false;
}

TitledText SplitAfterFirstLine(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
  const std::size_t end = std::min(text.find('\n'), text.size());
  return {text.substr(0, end), text.substr(end)};
}

}  // namespace

TitledText SplitAtTitle(std::string_view text, TitleRule rule) {
  if (rule == TitleRule::kFirstLine) return SplitAfterFirstLine(text);
  const std::string_view named = TakeFields(&text);
  if (!named.empty()) return {named, text};
  TitledText found;
  return FindHeading(text, &found) ? found : SplitAfterFirstLine(text);
}

}  // namespace kestan_cli
