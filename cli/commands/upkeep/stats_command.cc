#include <kestan/maintenance.h>
#include <kestan/results.h>

#include <cstdint>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "cli/commands/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/opened_index.h"

namespace kestan_cli {
namespace {

using kestan::IndexStatistics;
using kestan::RecordBytes;

// A number that describes an index.
struct Fact {
  const char* name;   // in JSON
  const char* words;  // in text
  std::uint64_t number;
};

bool KeepsPositions(const IndexStatistics& index) {
  return kestan::KeepsPositions(index.option_flags);
}

std::vector<Fact> CountsIn(const IndexStatistics& index) {
  return {{"documents", "documents", index.documents},
          {"words", "words", index.words - index.unused},
          {"unused_words", "words of no document", index.unused},
          {"postings", "postings", index.postings},
          {"positions", "positions", index.positions},
          {"highest_code", "highest document code", index.highest_code},
          {"removed_codes", "codes of removed documents", index.removed_codes},
          {"reusable_codes", "reusable codes", index.reusable_codes},
          {"option_flags", "option flags", index.option_flags}};
}

std::vector<Fact> SizesIn(const IndexStatistics& index) {
  const auto bytes = [](const RecordBytes& kind) { return kind.key_bytes + kind.value_bytes; };
  return {{"file", "file", index.file_bytes},
          {"posting_records", "posting records", bytes(index.posting_records)},
          {"document_records", "document records", bytes(index.document_records)},
          {"name_records", "name records", bytes(index.name_records)},
          {"titles", "titles", bytes(index.titles)},
          {"summaries", "summaries", bytes(index.summaries)},
          {"user_records", "user records", bytes(index.user_records)},
          {"word_lists", "word lists", bytes(index.word_lists)},
          {"system_records", "system records", bytes(index.system_records)},
          {"other_records", "other records", bytes(index.other_records)},
          {"reclaimable", "a shrink would give back about", index.reclaimable_bytes}};
}

// The words that occur in `low` to `high` documents.
struct FrequencyRow {
  std::uint64_t low;
  std::uint64_t high;
  std::uint64_t words;
  std::uint64_t postings;
};

std::vector<FrequencyRow> CurveOf(const IndexStatistics& index) {
  std::vector<FrequencyRow> rows;
  std::uint64_t low = 1;
  std::uint64_t high = 1;
  for (const kestan::FrequencyClass& group : index.frequencies) {
    if (group.words != 0) rows.push_back({low, high, group.words, group.postings});
    low = high + 1;
    high *= 2;
  }
  return rows;
}

std::string TextOf(const IndexStatistics& index) {
  std::string text;
  for (const Fact& fact : CountsIn(index)) {
    text += std::string(fact.words) + ": " + std::to_string(fact.number) + "\n";
  }
  text += std::string("positions kept: ") + (KeepsPositions(index) ? "yes" : "no") + "\n";
  for (const Fact& fact : SizesIn(index)) {
    text += std::string(fact.words) + ": " + std::to_string(fact.number) + " bytes\n";
  }
  for (const FrequencyRow& row : CurveOf(index)) {
    const std::string range = row.low == row.high ? Counted(row.low, "document")
                                                  : std::to_string(row.low) + " to " +
                                                        std::to_string(row.high) + " documents";
    text += "words in " + range + ": " + std::to_string(row.words) + "\n";
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

std::string JsonOf(const IndexStatistics& index) {
  Json report = Json::object();
  for (const Fact& fact : CountsIn(index)) report[fact.name] = fact.number;
  report["positions_kept"] = KeepsPositions(index);
  Json sizes = Json::object();
  for (const Fact& fact : SizesIn(index)) sizes[fact.name] = fact.number;
  report["bytes"] = sizes;
  report["frequencies"] = JsonOf(CurveOf(index));
  return JsonReport(report);
}

int RunStats(Kestan&, const Values& values) {
  const std::string path = values.Text("INDEX");
  ExamineIndex(path, Access::kRead);
  Database store;
  OpenStore(store, path, Access::kRead);
  const IndexStatistics index = kestan::ReadStatistics(store);
  if (index.file_error != kestan::StoreError::kNone) throw CannotRead(path, index.file_error);
  PrintReport(
      ReportFormatOf(values), [&] { return JsonOf(index); }, [&] { return TextOf(index); });
  return kDone;
}

}  // namespace

Command StatsCommand() {
  return {"stats",
          "Tell how much an index holds, and what takes the room.",
          {IndexArgument()},
          {JsonOption()},
          "Words and postings of removed documents count until the index is shrunk.",
          {"kestan stats my.index"},
          RunStats};
}

}  // namespace kestan_cli
