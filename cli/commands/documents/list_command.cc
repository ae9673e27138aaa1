#include <string>
#include <vector>

#include "cli/app/command_registry.h"
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

Json JsonOf(Kestan& engine, const std::string& name) {
  Json document{{"name", name}, {"time", engine.DocumentTimestamp(name.c_str())}};
  if (const char* const title = engine.DBGetTitle(name.c_str())) document["title"] = title;
  if (const char* const summary = engine.DBGetSummary(name.c_str())) document["summary"] = summary;
  return document;
}

Json JsonOf(Kestan& engine, const Names& names) {
  Json documents = Json::array();
  for (const std::string& name : names) documents.push_back(JsonOf(engine, name));
  return documents;
}

int RunList(Kestan& engine, const Values& values) {
  const OpenedIndex opened(engine, values.Text("INDEX"), Access::kRead);
  const Names names = DocumentNames(engine);
  PrintReport(
      ReportFormatOf(values),
      [&] {
        return JsonReport({{"documents", JsonOf(engine, names)}});
      },
      [&] { return TextOf(names, values.Has("--null") ? '\0' : '\n'); });
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
