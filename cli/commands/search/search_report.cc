#include "cli/commands/search/search_report.h"

#include <algorithm>
#include <string_view>

#include "cli/console/message.h"

namespace kestan_cli {
namespace {

using kestan::search::Explanation;
using kestan::search::Fragment;

constexpr std::string_view kIndent = "    ";

// Terminal controls that start a colour, and that end it.
constexpr std::string_view kFaint = "\x1b[2m";
constexpr std::string_view kName = "\x1b[36m";
constexpr std::string_view kBoldMatch = "\x1b[1;31m";
constexpr std::string_view kEnd = "\x1b[0m";

std::string Painted(std::string_view colour, const std::string& text, bool coloured) {
  if (!coloured) return text;
  return std::string(colour) + text + std::string(kEnd);
}

std::string SnippetLine(const std::vector<Fragment>& snippet, bool coloured) {
  std::string line;
  for (const Fragment& fragment : snippet) {
    const std::string text = OneLine(fragment.text);
    if (!fragment.matches) {
      line += text;
    } else {
      line += coloured ? Painted(kBoldMatch, text, true) : "[" + text + "]";
    }
  }
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

std::string RichLines(const ShownHit& hit, bool coloured) {
  const std::string percent = std::to_string(hit.hit.percent);
  std::string lines =
      Painted(kFaint, percent, coloured) + " " + Painted(kName, OneLine(hit.path), coloured) + "\n";
  const std::string& title = hit.hit.title;
  if (!title.empty()) lines.append(kIndent).append(OneLine(title)).append("\n");
  if (!hit.snippet.empty()) {
    lines.append(kIndent).append(SnippetLine(hit.snippet, coloured)).append("\n");
  }
  return lines;
}

std::vector<std::string> ExplanationLines(const Explanation& explanation) {
  std::vector<std::string> lines;
  AppendExplanation(explanation, 0, &lines);
  return lines;
}

}  // namespace kestan_cli
