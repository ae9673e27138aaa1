// SPDX-License-Identifier: GPL-3.0-or-later
#include <string>
#include <vector>

#include "cli/commands/commands.h"
#include "cli/commands/upkeep/index_facts.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/index_errors.h"
#include "cli/index/index_kind.h"

namespace kestan_cli {
namespace {

std::string TextOf(const FrequencyRow& row) {
  const std::string range = row.low == row.high ? Counted(row.low, "document")
                                                : std::to_string(row.low) + " to " +
                                                      std::to_string(row.high) + " documents";
  return "words in " + range + ": " + std::to_string(row.words) + "\n";
}

std::string TextOf(const IndexFacts& facts) {
  std::string text;
  for (const Fact& fact : facts.counts) {
    text += std::string(fact.words) + ": " + std::to_string(fact.number) + "\n";
  }
  text += std::string("positions kept: ") + (facts.positions_kept ? "yes" : "no") + "\n";
  if (facts.is_folder) text += "language: " + OneLine(facts.language) + "\n";
  for (const Fact& fact : facts.sizes) {
    text += std::string(fact.words) + ": " + std::to_string(fact.number) + " bytes\n";
  }
  for (const FrequencyRow& row : facts.frequencies) text += TextOf(row);
  for (const RememberedRoot& root : facts.roots) {
    text += "kept up to date with: " + OneLine(root.path);
    for (const std::string& option : root.options) text += " " + OneLine(option);
    text += "\n";
  }
  return text;
}

Json JsonOf(const std::vector<FrequencyRow>& curve) {
  Json rows = Json::array();
  for (const FrequencyRow& row : curve) {
    rows.push_back({{"documents_from", row.low},
                    {"documents_to", row.high},
                    {"words", row.words},
                    {"postings", row.postings}});
  }
  return rows;
}

Json JsonOf(const std::vector<RememberedRoot>& roots) {
  Json list = Json::array();
  for (const RememberedRoot& root : roots) {
    list.push_back({{"path", root.path}, {"options", root.options}});
  }
  return list;
}

std::string JsonOf(const IndexFacts& facts) {
  Json report = Json::object();
  for (const Fact& fact : facts.counts) report[fact.name] = fact.number;
  report["positions_kept"] = facts.positions_kept;
  if (facts.is_folder) report["language"] = facts.language;
  Json sizes = Json::object();
  for (const Fact& fact : facts.sizes) sizes[fact.name] = fact.number;
  report["bytes"] = sizes;
  report["frequencies"] = JsonOf(facts.frequencies);
  if (facts.is_folder) report["roots"] = JsonOf(facts.roots);
  return JsonReport(report);
}

IndexFacts FactsOf(const std::string& path) {
  switch (KindOfIndex(path)) {
    case IndexKind::kNone:
      throw CannotOpen(path, kNoSuchIndex);
    case IndexKind::kFolder:
      return FactsOfFolder(path);
    default:
      return FactsOfFile(path);
  }
}

int RunStats(const Values& values) {
  const IndexFacts facts = FactsOf(values.Text("INDEX"));
  PrintReport(
      ReportFormatOf(values), [&] { return JsonOf(facts); }, [&] { return TextOf(facts); });
  return kDone;
}

}  // namespace

Command StatsCommand() {
  return {"stats",
          "Tell how much an index holds, what takes the room, and what it is kept up to date with.",
          {IndexArgument()},
          {JsonOption()},
          "In an index of one file, words and postings of removed documents count too.",
          {"kestan stats my.index"},
          RunStats};
}

}  // namespace kestan_cli
