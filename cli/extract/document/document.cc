// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/document/document.h"

#include <kestan/kestan.h>
#include <kestan/search.h>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "cli/extract/charset/ascii.h"
#include "cli/extract/document/words.h"
#include "cli/files/skip.h"

namespace kestan_cli {
namespace {

// Returns where to cut `line`: at `max_bytes`, or up to three bytes before, where a character of
// UTF-8 starts. Text that is not UTF-8 is cut at `max_bytes`.
std::size_t CutAt(const std::string& line, std::size_t max_bytes) {
  for (std::size_t at = max_bytes; at + 4 > max_bytes; --at) {
    if (!kestan::search::ContinuesCharacter(line[at])) return at;
    if (at == 0) break;
  }
  return max_bytes;
}

bool IsBase64(char byte) {
  return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
         (byte >= '0' && byte <= '9') || byte == '+' || byte == '/' || byte == '=';
}

// Returns the length of a line of base64; 0 if `line` is not one.
std::size_t WidthOfBase64(std::string_view line) {
  line = line.substr(0, line.find_last_not_of('\r') + 1);
  return std::all_of(line.begin(), line.end(), IsBase64) ? line.size() : 0;
}

// Returns the lines of `text` without their line feeds. Borrows it.
std::vector<std::string_view> LinesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

// Empties the lines of base64 blocks in mail (76 columns) and in keys (64); the engine accepts only
// 72-column lines. A block is two or more lines of that width and a shorter one at the end.
std::string StripBase64(std::string_view text) {
  std::string kept;
  kept.reserve(text.size() + 1);
  std::size_t block = 0;  // the width of the current block, 0 outside of blocks
  std::size_t next = 0;   // the width of the next line
  const std::vector<std::string_view> lines = LinesOf(text);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::size_t width = i == 0 ? WidthOfBase64(lines[0]) : next;
    next = i + 1 < lines.size() ? WidthOfBase64(lines[i + 1]) : 0;
    if (block == 0 && (width == 64 || width == 76) && next == width) block = width;
    const bool is_inside = width != 0 && width <= block;
    if (!is_inside) kept += lines[i];
    if (!is_inside || width < block) block = 0;
    kept += '\n';
  }
  return kept;
}

// Returns `text` with a blank, which no encoded data has, in place of each byte beyond ASCII. The
// engine takes a line with such a byte for encoded data.
std::string WithoutHighBytes(std::string text) {
  for (char& byte : text) {
    if (static_cast<unsigned char>(byte) >= 0x80) byte = ' ';
  }
  return text;
}

// Empties the lines that the engine takes for encoded data. It leaves a line feed of each.
std::string StripLines(std::string_view text) {
  const std::string lines = StripBase64(text);
  std::string stripped = WithoutHighBytes(lines);
  const int length = Kestan::StripBadLines(stripped.data(), static_cast<unsigned>(stripped.size()));
  stripped.resize(static_cast<std::size_t>(length));
  const std::vector<std::string_view> kept = LinesOf(stripped);
  const std::vector<std::string_view> all = LinesOf(lines);
  std::string made;
  made.reserve(lines.size());
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (i < kept.size() && !kept[i].empty()) made += all[i];
    made += '\n';
  }
  return made;
}

// Returns `text`, which must be short enough.
std::string Checked(std::string text) {
  if (text.size() > kMaxTextBytes) throw SkipFile(SkipKind::kTooLarge, "too much text");
  return text;
}

// Returns whether the first line of `text` holds its title.
bool OpensWith(std::string_view title, std::string_view text) {
  const std::string_view line = SplitAtTitle(text).title;
  return title.empty() || (title.data() >= line.data() && title.data() < line.data() + line.size());
}

}  // namespace

std::string Excerpt(std::string_view text, std::size_t max_bytes) {
  std::string line;
  bool gap = false;
  for (char byte : text) {
    if (IsWhiteSpace(byte)) {
      gap = !line.empty();
      continue;
    }
    if (gap) line += ' ';
    gap = false;
    line += byte;
    if (line.size() > max_bytes + 1) break;
  }
  if (line.size() > max_bytes) line.resize(CutAt(line, max_bytes));
  if (!line.empty() && line.back() == ' ') line.pop_back();
  return line;
}

Document MakeDocument(std::string text, TitleRule rule, const WordRules& rules) {
  const TitledText titled = SplitAtTitle(text, rule);
  Document document;
  document.title = Excerpt(titled.title, kMaxTitleBytes);
  document.summary = Excerpt(titled.rest, kMaxSummaryBytes);
  if (!OpensWith(titled.title, text)) text.insert(0, document.title + "\n");
  text = Checked(std::move(text));
  if (rules.strip_encoded) text = StripLines(text);
  if (rules.stop_words.empty()) {
    document.text = std::move(text);
  } else {
    document.words = Checked(WordsWithout(text, rules.stop_words));
  }
  return document;
}

}  // namespace kestan_cli
