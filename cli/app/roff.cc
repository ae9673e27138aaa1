// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/roff.h"

#include <array>
#include <cstdio>
#include <sstream>

#include "cli/console/ascii.h"
#include "cli/console/control_characters.h"

namespace kestan_cli {
namespace {

std::string Escaped(char32_t code, std::string_view character) {
  switch (code) {
    case '\\':
      return "\\e";
    case '-':
      return "\\-";
    case '\'':
      return "\\(aq";
    case '`':
      return "\\(ga";
    case '~':
      return "\\(ti";
    case '^':
      return "\\(ha";
    default:
      break;
  }
  if (code < 0x80) return std::string(character);
  std::array<char, 16> escape{};
  std::snprintf(escape.data(), escape.size(), "\\[u%04X]", static_cast<unsigned>(code));
  return escape.data();
}

bool StartsWith(const std::string& text, std::string_view start) {
  return text.compare(0, start.size(), start) == 0;
}

// Returns the part of `line` from `*at` up to `end`, and moves `*at` behind that; nothing if `line`
// has no `end` there.
std::string TakenUpTo(const std::string& line, std::string_view end, std::size_t* at) {
  const std::size_t found = line.find(end, *at);
  if (found == std::string::npos) return "";
  std::string taken = line.substr(*at, found - *at);
  *at = found + end.size();
  return taken;
}

// Converts the markup within a line.
std::string Inline(const std::string& line) {
  std::string roff;
  std::string plain;
  const auto add = [&](const std::string& bold) {
    roff += Roff(plain);
    plain.clear();
    if (!bold.empty()) roff += "\\fB" + Roff(bold) + "\\fR";
  };
  for (std::size_t at = 0; at < line.size();) {
    std::size_t after = at;
    if (line[at] == '`') {
      add(TakenUpTo(line, "`", &++after));
    } else if (line.compare(at, 2, "**") == 0) {
      add(TakenUpTo(line, "**", &(after += 2)));
    } else if (line[at] == '[' && line.find("](", at) != std::string::npos) {
      plain += TakenUpTo(line, "](", &++after);
      TakenUpTo(line, ")", &after);
    } else {
      plain += line[after++];
    }
    at = after;
  }
  add("");
  return roff;
}

// Returns the cells of the row `line`: "| a | b |".
std::array<std::string, 2> CellsOf(const std::string& line) {
  std::array<std::string, 2> cells;
  std::size_t cell = 0;
  for (std::size_t at = 1; at < line.size() && cell < cells.size(); ++at) {
    if (line[at] == '|') {
      ++cell;
    } else {
      if (line.compare(at, 2, "\\|") == 0) ++at;
      cells.at(cell) += line[at];
    }
  }
  for (std::string& text : cells) {
    text.erase(0, text.find_first_not_of(' '));
    text.erase(text.find_last_not_of(' ') + 1);
  }
  return cells;
}

// Converts a page line by line.
class MarkdownPage {
 public:
  void Take(const std::string& line) {
    const bool is_fence = StartsWith(line, "```");
    const bool is_indented = StartsWith(line, "    ") && paragraph_.empty();
    if (is_fence || (is_indented != in_code_ && !in_fence_)) {
      EndParagraph();
      if (is_fence) in_fence_ = !in_fence_;
      in_code_ = is_fence ? in_fence_ : is_indented;
      roff_ += in_code_ ? ".PP\n.nf\n.RS 4\n" : ".RE\n.fi\n";
      if (is_fence) return;
    }
    if (in_code_) {
      roff_ += Roff(in_fence_ ? line : line.substr(4)) + "\n";
    } else {
      TakeText(line);
    }
  }

  std::string Finish() {
    EndParagraph();
    if (in_code_) roff_ += ".RE\n.fi\n";
    return std::move(roff_);
  }

 private:
  void TakeText(const std::string& line) {
    const bool is_row = StartsWith(line, "|");
    if (line.empty() || is_row || line[0] == '#' || StartsWith(line, "- ")) EndParagraph();
    in_table_ = in_table_ && is_row;
    if (StartsWith(line, "## ")) {
      roff_ += ".SH " + Roff(UpperCase(line.substr(3))) + "\n";
    } else if (is_row) {
      TakeRow(line);
    } else if (StartsWith(line, "- ")) {
      roff_ += ".IP \\(bu 2\n";
      paragraph_ = line.substr(2);
    } else if (!line.empty() && line[0] != '#') {
      if (paragraph_.empty()) roff_ += ".PP\n";
      paragraph_ += (paragraph_.empty() ? "" : " ") + line;
    }
  }

  // The first two rows are the heading and the line below it.
  void TakeRow(const std::string& line) {
    if (!in_table_) rows_ = 0;
    in_table_ = true;
    if (++rows_ <= 2) return;
    const auto cells = CellsOf(line);
    roff_ += ".TP\n" + Inline(cells[0]) + "\n" + Inline(cells[1]) + "\n";
  }

  void EndParagraph() {
    if (!paragraph_.empty()) roff_ += Inline(paragraph_) + "\n";
    paragraph_.clear();
  }

  static std::string UpperCase(std::string text) {
    for (char& byte : text) {
      if (IsAsciiLetter(byte)) byte = static_cast<char>(byte & ~0x20);
    }
    return text;
  }

  std::string roff_;
  std::string paragraph_;  // or item, as far as it was read
  bool in_fence_ = false;
  bool in_code_ = false;
  bool in_table_ = false;
  int rows_ = 0;
};

}  // namespace

std::string Roff(std::string_view text) {
  std::string escaped;
  bool at_start = true;
  while (!text.empty()) {
    const Character next = FirstCharacter(text);
    if (at_start && (text[0] == '.' || text[0] == '\'')) escaped += "\\&";
    at_start = text[0] == '\n';
    escaped += Escaped(next.code, text.substr(0, next.bytes));
    text.remove_prefix(next.bytes);
  }
  return escaped;
}

std::string RoffItem(std::string_view term, const std::string& roff) {
  return ".TP\n.B " + Roff(term) + "\n" + roff + "\n";
}

std::string RoffOfMarkdown(const std::string& markdown) {
  MarkdownPage page;
  std::istringstream lines(markdown);
  for (std::string line; std::getline(lines, line);) page.Take(line);
  return ".SH DESCRIPTION\n" + page.Finish();
}

}  // namespace kestan_cli
