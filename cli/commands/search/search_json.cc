// SPDX-License-Identifier: GPL-3.0-or-later
// The report of a search as JSON, in a file of its own: the header is slow to compile.
#include "cli/commands/search/search_report.h"
#include "cli/console/json.h"

namespace kestan_cli {
namespace {

using kestan::search::Explanation;
using kestan::search::Fragment;

Json JsonOf(const std::vector<Fragment>& snippet) {
  Json fragments = Json::array();
  for (const Fragment& fragment : snippet) {
    fragments.push_back({{"text", fragment.text}, {"match", fragment.matches}});
  }
  return fragments;
}

Json JsonOf(const ShownHit& hit) {
  Json json{{"percent", hit.hit.percent}, {"name", hit.hit.name}, {"title", hit.hit.title}};
  if (hit.date) json["date"] = *hit.date;
  if (!hit.from.empty()) json["from"] = hit.from;
  if (!hit.index.empty()) json["index"] = hit.index;
  if (!hit.snippet.empty()) json["snippet"] = JsonOf(hit.snippet);
  return json;
}

Json JsonOf(const Explanation& explanation) {
  Json json{{"part", explanation.part},
            {"documents", explanation.documents},
            {"microseconds", explanation.microseconds}};
  if (!explanation.note.empty()) json["note"] = explanation.note;
  Json parts = Json::array();
  for (const Explanation& part : explanation.parts) parts.push_back(JsonOf(part));
  if (!parts.empty()) json["parts"] = std::move(parts);
  return json;
}

}  // namespace

std::string AsJson(const SearchReport& report) {
  Json json{{"schema", kJsonSchema}, {"query", report.query}, {"total", report.total}};
  Json hits = Json::array();
  for (const ShownHit& hit : report.hits) hits.push_back(JsonOf(hit));
  json["hits"] = std::move(hits);
  json["suggestions"] = report.suggestions;
  json["notes"] = report.notes;
  if (report.explanation) json["explanation"] = JsonOf(*report.explanation);
  return JsonLine(json);
}

}  // namespace kestan_cli
