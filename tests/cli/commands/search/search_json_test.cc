// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/commands/search/search_report.h"

namespace kestan_cli {
namespace {

using Json = nlohmann::json;

ShownHit Hit(int percent, const std::string& name, const std::string& title) {
  ShownHit shown;
  shown.hit.percent = percent;
  shown.hit.name = name;
  shown.hit.title = title;
  shown.path = "shown";
  return shown;
}

Json Read(const SearchReport& report) { return Json::parse(AsJson(report)); }

TEST(SearchJsonTest, EmptyReportHasAllFieldsButTheExplanation) {
  EXPECT_EQ(Read({}), Json::parse(R"({"schema": 1, "query": "", "total": 0, "hits": [],
                                      "suggestions": [], "notes": []})"));
}

TEST(SearchJsonTest, HitsHaveTheirFields) {
  SearchReport report;
  report.query = "cat";
  report.total = 5;
  report.hits = {Hit(42, "a", "T"), Hit(1, "b", "")};
  report.hits[0].snippet = {{"x ", false}, {"cat", true}};
  report.hits[1].index = "my.index";
  report.hits[1].date = 5;
  report.hits[1].from = "Ann";
  const Json json = Read(report);
  EXPECT_EQ(json["total"], 5);
  EXPECT_EQ(json["query"], "cat");
  EXPECT_EQ(json["hits"], Json::parse(R"([
      {"percent": 42, "name": "a", "title": "T",
       "snippet": [{"text": "x ", "match": false}, {"text": "cat", "match": true}]},
      {"percent": 1, "name": "b", "title": "", "index": "my.index", "date": 5,
       "from": "Ann"}])"));
}

TEST(SearchJsonTest, BytesThatAreNotUtf8AreReplaced) {
  SearchReport report;
  report.hits = {Hit(1, "a\xff", "")};
  EXPECT_EQ(Read(report)["hits"][0]["name"], "a\xef\xbf\xbd");
}

TEST(SearchJsonTest, ExplanationIsATree) {
  SearchReport report;
  report.explanation =
      kestan::search::Explanation{"NOT", "", 1, 5, {{"cat*", "2 words", 2, 3, {}}}};
  EXPECT_EQ(Read(report)["explanation"], Json::parse(R"({
      "part": "NOT", "documents": 1, "microseconds": 5,
      "parts": [{"part": "cat*", "documents": 2, "microseconds": 3, "note": "2 words"}]})"));
}

TEST(SearchJsonTest, SuggestionsAndNotesAreLists) {
  SearchReport report;
  report.suggestions = {"cat", "cart"};
  report.notes = {"note"};
  EXPECT_EQ(Read(report)["suggestions"], Json::parse(R"(["cat", "cart"])"));
  EXPECT_EQ(Read(report)["notes"], Json::parse(R"(["note"])"));
}

}  // namespace
}  // namespace kestan_cli
