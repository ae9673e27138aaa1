#include "cli/sync/index_report.h"

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
  return "added " + std::to_string(report.added) + ", updated " + std::to_string(report.updated) +
         ", moved " + std::to_string(report.moved) + ", removed " + std::to_string(report.removed) +
         ", unchanged " + std::to_string(report.unchanged) + ", skipped " +
         std::to_string(report.skips.size()) + InParentheses(report.skips) + ", " +
         WithCommas(report.documents) +
         (report.documents == 1 ? " document in " : " documents in ") +
         WithCommas(report.segments) + (report.segments == 1 ? " segment\n" : " segments\n");
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
  return text;
}

}  // namespace kestan_cli
