// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/snippet_lines.h"

#include <string_view>

#include "cli/console/columns.h"
#include "cli/console/message.h"

namespace kestan_cli {
namespace {

using kestan::search::Fragment;

constexpr std::size_t kMostLines = 2;
constexpr std::string_view kLeftOutBefore = "... ";
constexpr std::string_view kLeftOutAfter = " ...";

// Terminal controls around a match.
constexpr std::string_view kBold = "\x1b[1;31m";
constexpr std::string_view kEnd = "\x1b[0m";

// A character of the snippet, with what is drawn over it.
struct Cell {
  std::string text;
  std::size_t columns;
  bool matches;
};

using Cells = std::vector<Cell>;

bool IsBlank(const Cell& cell) { return cell.text == " "; }

Cells CellsOf(const std::vector<Fragment>& snippet, bool coloured) {
  Cells cells;
  for (const Fragment& fragment : snippet) {
    const bool bracketed = fragment.matches && !coloured;
    const std::string text = OneLine(fragment.text);
    if (bracketed) cells.push_back({"[", 1, true});
    for (std::string_view rest = text; !rest.empty();) {
      const Cluster first = FirstCluster(rest);
      cells.push_back({std::string(rest.substr(0, first.bytes)), first.columns, fragment.matches});
      rest.remove_prefix(first.bytes);
    }
    if (bracketed) cells.push_back({"]", 1, true});
  }
  return cells;
}

// Returns where the line ends that begins at `from`: at a blank in its second half, else anywhere.
std::size_t LineEnd(const Cells& cells, std::size_t from, std::size_t columns) {
  std::size_t used = 0;
  std::size_t blank = from;
  for (std::size_t at = from; at < cells.size(); ++at) {
    if (IsBlank(cells[at]) && (used >= columns / 2 || blank > from)) blank = at;
    used += cells[at].columns;
    if (used > columns) return blank > from ? blank : at;
  }
  return cells.size();
}

struct Line {
  std::size_t from;
  std::size_t to;
};

// Lines of a snippet, one after the other.
struct Part {
  std::vector<Line> lines;
  std::size_t matches = 0;
};

std::size_t MatchesIn(const Cells& cells, Line line) {
  std::size_t matches = 0;
  for (std::size_t at = line.from; at < line.to; ++at) {
    if (cells[at].matches && (at == 0 || !cells[at - 1].matches)) ++matches;
  }
  return matches;
}

// Returns the lines from `from` on, with room for the dots.
Part PartFrom(const Cells& cells, std::size_t from, std::size_t columns) {
  Part part;
  std::size_t room = columns - (from > 0 ? kLeftOutBefore.size() : 0);
  while (from < cells.size() && part.lines.size() < kMostLines) {
    Line line{from, LineEnd(cells, from, room)};
    const bool is_last = part.lines.size() + 1 == kMostLines;
    if (is_last && line.to < cells.size()) {
      line.to = LineEnd(cells, from, room - kLeftOutAfter.size());
    }
    part.matches += MatchesIn(cells, line);
    part.lines.push_back(line);
    for (from = line.to; from < cells.size() && IsBlank(cells[from]);) ++from;
    room = columns;
  }
  return part;
}

// Returns the first of the parts with the most matches.
Part BestPart(const Cells& cells, std::size_t columns) {
  Part best = PartFrom(cells, 0, columns);
  const std::size_t all = MatchesIn(cells, {0, cells.size()});
  for (std::size_t from = 1; from < cells.size() && best.matches < all; ++from) {
    if (!IsBlank(cells[from - 1])) continue;
    Part part = PartFrom(cells, from, columns);
    if (part.matches > best.matches) best = std::move(part);
  }
  return best;
}

std::string Painted(const Cells& cells, Line line, bool coloured) {
  std::string text;
  bool is_bold = false;
  for (std::size_t at = line.from; at < line.to; ++at) {
    const bool bold = coloured && cells[at].matches;
    if (bold != is_bold) text += bold ? kBold : kEnd;
    text += cells[at].text;
    is_bold = bold;
  }
  return is_bold ? text.append(kEnd) : text;
}

}  // namespace

std::vector<std::string> SnippetLines(const std::vector<Fragment>& snippet, bool coloured,
                                      std::size_t columns) {
  const Cells cells = CellsOf(snippet, coloured);
  const Part part = BestPart(cells, columns);
  std::vector<std::string> lines;
  for (const Line& line : part.lines) lines.push_back(Painted(cells, line, coloured));
  if (lines.empty()) return lines;
  if (part.lines.front().from > 0) lines.front().insert(0, kLeftOutBefore);
  if (part.lines.back().to < cells.size()) lines.back() += kLeftOutAfter;
  return lines;
}

}  // namespace kestan_cli
