// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/search_report.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <string_view>

#include "cli/commands/search/snippet_lines.h"
#include "cli/console/columns.h"
#include "cli/console/message.h"

namespace kestan_cli {
namespace {

using kestan::search::Explanation;

constexpr std::string_view kIndent = "    ";
constexpr std::size_t kLeastColumns = 20;
constexpr std::size_t kMostOfSender = 24;  // columns

// Terminal controls that start a colour, and that end it.
constexpr std::string_view kFaint = "\x1b[2m";
constexpr std::string_view kName = "\x1b[36m";
constexpr std::string_view kEnd = "\x1b[0m";

std::string Painted(std::string_view colour, const std::string& text, bool coloured) {
  if (!coloured) return text;
  return std::string(colour) + text + std::string(kEnd);
}

// Returns the day of a time in seconds since 1970, as the clock of the user has it: 2026-11-20.
std::string DayOf(std::int64_t seconds) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm parts{};
  // On some hosts time_t has 32 bits.
  if (time != seconds || localtime_r(&time, &parts) == nullptr) return "";
  std::array<char, 32> day{};
  return {day.data(), std::strftime(day.data(), day.size(), "%Y-%m-%d", &parts)};
}

// Returns the name of the sender `from`, or the address of one without.
std::string SenderOf(const std::string& from) {
  const std::size_t open = from.find('<');
  const std::size_t close = from.find('>', open == std::string::npos ? 0 : open);
  if (open == std::string::npos || close == std::string::npos) return OneLine(from);
  std::string name = from.substr(0, open);
  name.erase(name.find_last_not_of(' ') + 1);
  return OneLine(name.empty() ? from.substr(open + 1, close - open - 1) : name);
}

// Returns the line with the date, the sender and the title; "" without them.
std::string TitleLine(const ShownHit& hit, bool coloured, std::size_t columns) {
  std::string line;
  const auto add = [&](const std::string& text, std::string_view colour) {
    const std::string gap = line.empty() ? "" : "  ";
    if (text.empty() || columns <= gap.size()) return;
    const std::string fitted = FittedStart(text, columns - gap.size());
    columns -= gap.size() + ColumnsOf(fitted);
    line += gap + (colour.empty() ? fitted : Painted(colour, fitted, coloured));
  };
  add(hit.date ? DayOf(*hit.date) : "", kFaint);
  add(FittedStart(SenderOf(hit.from), std::min(columns / 3, kMostOfSender)), kName);
  add(OneLine(hit.hit.title), "");
  return line;
}

void AppendExplanation(const Explanation& explanation, std::size_t depth,
                       std::vector<std::string>* lines) {
  std::string what = std::string(2 * depth, ' ') + explanation.part;
  if (!explanation.note.empty()) what += " (" + explanation.note + ")";
  lines->push_back(what + ": " + Counted(explanation.documents, "document") + ", " +
                   std::to_string(explanation.microseconds) + " us");
  for (const Explanation& part : explanation.parts) AppendExplanation(part, depth + 1, lines);
}

}  // namespace

std::string PlainLine(int percent, const std::string& name) {
  return std::to_string(percent) + " " + name + "\n";
}

std::string RichLines(const ShownHit& hit, bool coloured, std::size_t columns) {
  columns = std::max(columns, kLeastColumns);
  const std::string percent = std::to_string(hit.hit.percent);
  const std::string name = FittedEnd(OneLine(hit.path), columns - percent.size() - 1);
  std::string lines =
      Painted(kFaint, percent, coloured) + " " + Painted(kName, name, coloured) + "\n";
  const std::size_t room = columns - kIndent.size();
  const std::string title = TitleLine(hit, coloured, room);
  if (!title.empty()) lines.append(kIndent).append(title).append("\n");
  for (const std::string& line : SnippetLines(hit.snippet, coloured, room)) {
    lines.append(kIndent).append(line).append("\n");
  }
  return lines;
}

std::string TotalLine(const SearchReport& report, std::size_t shown, bool coloured) {
  const std::string hits =
      report.total == 0 ? "nothing found" : WithCommas(shown) + " of " + WithCommas(report.total);
  const std::string line = hits + " in " + WithCommas(report.milliseconds) + " ms";
  return Painted(kFaint, line, coloured) + "\n";
}

std::vector<std::string> ExplanationLines(const Explanation& explanation) {
  std::vector<std::string> lines;
  AppendExplanation(explanation, 0, &lines);
  return lines;
}

}  // namespace kestan_cli
