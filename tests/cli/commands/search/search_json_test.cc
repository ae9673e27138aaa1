#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/commands/search/search_report.h"

namespace kestan_cli {
namespace {

using Json = nlohmann::json;

Json Read(const SearchReport& report) { return Json::parse(AsJson(report)); }

TEST(SearchJsonTest, EmptyReportHasAllFieldsButTheExplanation) {
  EXPECT_EQ(Read({}), Json::parse(R"({"schema": 1, "query": "", "total": 0, "hits": [],
                                      "suggestions": [], "notes": []})"));
}

TEST(SearchJsonTest, HitsHaveTheirFields) {
  SearchReport report;
  report.query = "cat";
  report.total = 5;
  report.hits = {{{42, "a", 0}, "T", {{"x ", false}, {"cat", true}}}, {{0, "b", 1}, "", {}}};
  const Json json = Read(report);
  EXPECT_EQ(json["total"], 5);
  EXPECT_EQ(json["query"], "cat");
  EXPECT_EQ(json["hits"], Json::parse(R"([
      {"percent": 42, "name": "a", "title": "T",
       "snippet": [{"text": "x ", "match": false}, {"text": "cat", "match": true}]},
      {"percent": 0, "name": "b", "title": ""}])"));
}

TEST(SearchJsonTest, BytesThatAreNotUtf8AreReplaced) {
  SearchReport report;
  report.hits = {{{1, "a\xff", 0}, "", {}}};
  EXPECT_EQ(Read(report)["hits"][0]["name"], "a\xef\xbf\xbd");
}

TEST(SearchJsonTest, ExplanationIsATree) {
  SearchReport report;
  report.explanation =
      kestan::search::Explanation{"NOT", 1, 5, "", {{"cat*", 2, 3, "2 words", {}}}};
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
