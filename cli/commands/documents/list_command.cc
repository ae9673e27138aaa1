#include <kestan/results.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "cli/commands/commands.h"
#include "cli/console/json.h"
#include "cli/index/document_records.h"

namespace kestan_cli {
namespace {

using Names = std::vector<std::string>;

std::string TextOf(const Names& names, char end) {
  std::string text;
  for (const std::string& name : names) text.append(name) += end;
  return text;
}

struct TimedDocument {
  std::string name;
  std::uint32_t time = 0;
};

// Returns the documents in order of the bytes of their names. Reads the times in the same walk: a
// damaged file may not give a record twice.
std::vector<TimedDocument> TimedDocuments(Kestan& engine) {
  std::vector<TimedDocument> documents;
  kestan::IndexReader& reader = kestan::ReaderOf(engine);
  reader.ForEachDocument([&](std::string_view name) {
    documents.push_back({std::string(name), reader.TimestampOf(name)});
    return true;
  });
  std::sort(documents.begin(), documents.end(),
            [](const auto& left, const auto& right) { return left.name < right.name; });
  return documents;
}

Json JsonOf(Kestan& engine, const TimedDocument& document) {
  const char* const name = document.name.c_str();
  Json json{{"name", document.name}, {"time", document.time}};
  if (const char* const title = engine.DBGetTitle(name)) json["title"] = title;
  if (const char* const summary = engine.DBGetSummary(name)) json["summary"] = summary;
  return json;
}

Json JsonOf(Kestan& engine) {
  Json documents = Json::array();
  for (const TimedDocument& each : TimedDocuments(engine))
    documents.push_back(JsonOf(engine, each));
  return documents;
}

int RunList(Kestan& engine, const Values& values) {
  const OpenedIndex opened(engine, values.Text("INDEX"), Access::kRead);
  PrintReport(
      ReportFormatOf(values),
      [&] {
        return JsonReport({{"documents", JsonOf(engine)}});
      },
      [&] { return TextOf(DocumentNames(engine), values.Has("--null") ? '\0' : '\n'); });
  opened.CheckRead();
  return kDone;
}

}  // namespace

Command ListCommand() {
  return {"list",
          "List all documents by name.",
          {IndexArgument()},
          {{"-0,--null", "", "end each name with a NUL instead of a line feed"}, JsonOption()},
          "",
          {"kestan list my.index"},
          RunList};
}

}  // namespace kestan_cli
