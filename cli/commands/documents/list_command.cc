// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/commands/commands.h"
#include "cli/console/json.h"
#include "cli/index/document_names.h"
#include "cli/index/index_errors.h"
#include "cli/index/opened_reader.h"

namespace kestan_cli {
namespace {

using kestan::search::DocumentInfo;
using kestan::search::IndexReader;

// Returns what `part` takes of each document.
//   Throws   CommandError if the index cannot be read.
template <typename Part>
auto TakenOf(const IndexReader& reader, const std::string& index, const Part& part) {
  std::vector<decltype(part(DocumentInfo()))> parts;
  const auto status = reader.ForEachDocument([&](const DocumentInfo& document) {
    parts.push_back(part(document));
    return true;
  });
  CheckStatus(status, index);
  return parts;
}

std::string TextOf(const IndexReader& reader, const std::string& index, char end) {
  auto names = TakenOf(reader, index, [](const DocumentInfo& document) { return document.name; });
  std::sort(names.begin(), names.end());
  const ShownNames shown;
  std::string text;
  for (const std::string& name : names) text.append(shown(name)) += end;
  return text;
}

Json JsonOf(const DocumentInfo& document) {
  Json json{{"name", document.name}, {"time", document.added}};
  if (!document.title.empty()) json["title"] = document.title;
  if (!document.summary.empty()) json["summary"] = document.summary;
  return json;
}

Json JsonOf(const IndexReader& reader, const std::string& index) {
  auto named = TakenOf(reader, index, [](const DocumentInfo& document) {
    return std::make_pair(document.name, JsonOf(document));
  });
  std::stable_sort(named.begin(), named.end(),
                   [](const auto& left, const auto& right) { return left.first < right.first; });
  Json documents = Json::array();
  for (auto& [name, document] : named) documents.push_back(std::move(document));
  return documents;
}

int RunList(const Values& values) {
  const std::string index = values.Text("INDEX");
  const IndexReader reader = OpenReader(index);
  PrintReport(
      ReportFormatOf(values),
      [&] {
        return JsonReport({{"documents", JsonOf(reader, index)}});
      },
      [&] { return TextOf(reader, index, values.Has("--null") ? '\0' : '\n'); });
  return kDone;
}

}  // namespace

Command ListCommand() {
  return {"list",
          "List all documents by name.",
          {IndexArgument()},
          {{"-0,--null", "", "end each name with a NUL instead of a line feed"}, JsonOption()},
          "Names of files are shown as paths that open from here.",
          {"kestan list my.index"},
          RunList};
}

}  // namespace kestan_cli
