// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/index_report.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "cli/console/columns.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/document_names.h"

namespace kestan_cli {
namespace {

std::string InParentheses(const std::vector<Skip>& skips) {
  std::string text;
  for (const auto& [kind, count] : CountKinds(skips)) {
    text += (text.empty() ? " (" : ", ") + CountedSkips(count, kind);
  }
  return text.empty() ? text : text + ")";
}

}  // namespace

std::string ReportLine(const IndexReport& report) {
  return "added " + WithCommas(report.added) + ", updated " + WithCommas(report.updated) +
         ", moved " + WithCommas(report.moved) + ", removed " + WithCommas(report.removed) +
         ", unchanged " + WithCommas(report.unchanged) + ", skipped " +
         WithCommas(report.skips.size()) + InParentheses(report.skips) + ", " +
         WithCommas(report.documents) +
         (report.documents == 1 ? " document in " : " documents in ") +
         WithCommas(report.segments) + (report.segments == 1 ? " segment\n" : " segments\n");
}

std::string RemedyLines(const std::vector<Skip>& skips) {
  constexpr std::size_t kLines = 3;
  std::vector<SkipReason> reasons = ReasonsFor(skips);
  std::stable_partition(reasons.begin(), reasons.end(),
                        [](const SkipReason& reason) { return reason.has_remedy; });
  reasons.resize(std::min(reasons.size(), kLines));
  std::stable_sort(
      reasons.begin(), reasons.end(),
      [](const SkipReason& left, const SkipReason& right) { return left.files > right.files; });
  std::string lines;
  for (const SkipReason& reason : reasons) {
    lines += "  " + CountedSkips(reason.files, reason.kind) + ": " + reason.remedy + "\n";
  }
  return lines;
}

std::string Summary(const IndexReport& report, std::size_t columns) {
  constexpr std::size_t kIndent = 4;
  std::string lines = ReportLine(report) + RemedyLines(report.skips);
  if (columns == 0) return lines;
  std::string summary;
  for (std::string_view rest = lines; !rest.empty();) {
    const std::size_t end = rest.find('\n');
    summary += Wrapped(rest.substr(0, end), columns, kIndent) + "\n";
    rest.remove_prefix(end + 1);
  }
  return summary;
}

std::vector<std::string> FailureLines(const IndexReport& report, std::size_t max_lines) {
  std::vector<std::string> lines;
  std::size_t more = 0;
  const auto add = [&](auto line_of, const auto& failure) {
    if (lines.size() == max_lines) return static_cast<void>(++more);
    lines.push_back(line_of(failure));
  };
  for (const Skip& skip : report.skips) {
    if (IsFailure(skip.kind)) add(SkipLine, skip);
  }
  for (const Note& note : report.notes) add(NoteLine, note);
  if (more != 0) lines.push_back(WithCommas(more) + " more like these; --why names them all");
  return lines;
}

std::string SkipLine(const Skip& skip) {
  return "skipped " + Quoted(ShownNames()(skip.name)) + ": " + OneLine(skip.reason);
}

std::string SkipLines(const std::vector<Skip>& skips) {
  std::string lines;
  for (const Skip& skip : skips) lines += SkipLine(skip) + "\n";
  return lines;
}

std::string NoteLine(const Note& note) {
  return "indexed " + Quoted(ShownNames()(note.name)) + " in part: " + OneLine(note.reason);
}

std::string NoteLines(const std::vector<Note>& notes) {
  std::string lines;
  for (const Note& note : notes) lines += NoteLine(note) + "\n";
  return lines;
}

std::string ReportJson(const IndexReport& report, bool with_files) {
  Json skipped = {{"total", report.skips.size()}};
  for (const auto& [kind, count] : CountKinds(report.skips)) skipped[KeyOf(kind)] = count;
  Json json = {{"schema", kJsonSchema},         {"added", report.added},
               {"updated", report.updated},     {"moved", report.moved},
               {"removed", report.removed},     {"unchanged", report.unchanged},
               {"new_words", report.new_words}, {"documents", report.documents},
               {"segments", report.segments},   {"skipped", skipped}};
  for (const SkipReason& reason : ReasonsFor(report.skips)) {
    Json each = {{"kind", KeyOf(reason.kind)}, {"files", reason.files}};
    if (reason.has_remedy) each["remedy"] = reason.remedy;
    json["skipped_reasons"].push_back(std::move(each));
  }
  for (const Note& note : report.notes) {
    json["partial_files"].push_back({{"name", note.name}, {"reason", note.reason}});
  }
  if (with_files) json["skipped_files"] = Json::array();
  for (const Skip& skip : with_files ? report.skips : std::vector<Skip>()) {
    json["skipped_files"].push_back(
        {{"name", skip.name}, {"kind", KeyOf(skip.kind)}, {"reason", skip.reason}});
  }
  return JsonLine(json);
}

std::string NothingToIndex(const std::vector<Skip>& skips) {
  auto counts = CountKinds(skips);
  // To someone who looks for text, pipes and devices are binary.
  const unsigned long binary = counts[SkipKind::kBinary] + counts[SkipKind::kSpecial];
  std::string text = "nothing to index: no text files, " + CountedSkips(binary, SkipKind::kBinary) +
                     ", " + CountedSkips(counts[SkipKind::kLink], SkipKind::kLink);
  for (const auto& [kind, count] : counts) {
    if (kind > SkipKind::kSpecial) text += ", " + CountedSkips(count, kind);
  }
  // What failed has a line of its own.
  for (const SkipReason& reason : ReasonsFor(skips)) {
    if (reason.has_remedy && !IsFailure(reason.kind)) return text + "; " + reason.remedy;
  }
  return text;
}

}  // namespace kestan_cli
