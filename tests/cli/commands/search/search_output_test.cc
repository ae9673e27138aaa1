// SPDX-License-Identifier: GPL-3.0-or-later
// What a search shows, and in which form.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

using Json = nlohmann::json;

class SearchOutputTest : public CommandTest {
 protected:
  void SetUp() override {
    Add("b", "Pigs and more\nThe cat sat.\n");
    Add("a", "A cat and a cat\nand a dog.\n");
    Add("c", "Fish\n");
  }

  Outcome Search(
      std::vector<std::string> arguments, const InChild& prepare = [] {}) {
    arguments.insert(arguments.begin(), {"search", "my.index"});
    return Run(arguments, prepare);
  }

  Json SearchJson(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "--json");
    return Json::parse(Search(arguments).out);
  }
};

const std::string kPlain = "100 a\n77 b\n";

TEST_F(SearchOutputTest, LimitShowsTheFirst) {
  EXPECT_EQ(Search({"--limit", "1", "cat"}), Success("100 a\n"));
  EXPECT_EQ(Search({"--limit", "2", "cat"}), Success(kPlain));
  EXPECT_EQ(Search({"--limit", "99", "cat"}), Success(kPlain));
}

TEST_F(SearchOutputTest, LimitOfZeroShowsAll) {
  EXPECT_EQ(Search({"--limit", "0", "cat"}), Success(kPlain));
  EXPECT_EQ(Search({"--limit", "0", "--order", "name", "-l", "cat"}), Success("a\nb\n"));
  EXPECT_EQ(Search({"--limit", "0", "--count", "cat"}), Success("2\n"));
}

TEST_F(SearchOutputTest, PipesGetAllHits) {
  for (char name = 'd'; name <= 'p'; ++name) Add(std::string(1, name), "A cow\n");
  const auto lines = [this](const char* option) {
    const std::string out = Search({option, "cow"}).out;
    return std::count(out.begin(), out.end(), '\n');
  };
  EXPECT_EQ(lines("--all"), 13);
  EXPECT_EQ(lines("-l"), 13);
  EXPECT_EQ(lines("--snippets"), 3 * 13);
  EXPECT_EQ(SearchJson({"cow"})["hits"].size(), 13u);
}

TEST_F(SearchOutputTest, CountInJsonShowsNoDocuments) {
  const Json report = SearchJson({"--count", "--limit", "1", "cat"});
  EXPECT_EQ(report["total"], 2);
  EXPECT_EQ(report["hits"], Json::array());
}

TEST_F(SearchOutputTest, OrderIsBestOrByName) {
  EXPECT_EQ(Search({"--order", "best", "-l", "cat OR fish"}), Success("c\na\nb\n"));
  EXPECT_EQ(Search({"--order", "name", "-l", "cat OR fish"}), Success("a\nb\nc\n"));
  EXPECT_EQ(Search({"--order", "name", "--limit", "2", "-l", "cat OR fish"}), Success("a\nb\n"));
  EXPECT_EQ(Search({"--order", "score", "cat"}).status, 2);
}

TEST_F(SearchOutputTest, NamesAloneEndWithALineFeedOrANul) {
  EXPECT_EQ(Search({"-l", "cat"}), Success("a\nb\n"));
  EXPECT_EQ(Search({"-0", "cat"}), Success(std::string("a\0b\0", 4)));
  EXPECT_EQ(Search({"-l", "-0", "cat"}), Success(std::string("a\0b\0", 4)));
}

TEST_F(SearchOutputTest, CountIsOfAllHits) {
  EXPECT_EQ(Search({"--count", "cat"}), Success("2\n"));
  EXPECT_EQ(Search({"--count", "--limit", "1", "cat"}), Success("2\n"));
  EXPECT_EQ(Search({"--count", "cow"}), (Outcome{1, "0\n", ""}));
  EXPECT_EQ(Search({"--count", "42"}).out, "0\n");
}

TEST_F(SearchOutputTest, SnippetsShowTheFileThatWasIndexed) {
  EXPECT_EQ(Search({"--snippets", "cat dog"}),
            Success("100 a\n    A cat and a cat\n    A [cat] and a [cat] and a [dog].\n"));
}

TEST_F(SearchOutputTest, ChangedFilesAndFilesWithoutARecordHaveNoSnippet) {
  Write("a", "another cat\n");
  ASSERT_EQ(Run({"user", "delete", "my.index", "b"}).status, 0);
  EXPECT_EQ(Search({"--snippets", "cat"}),
            Success("100 a\n    A cat and a cat\n77 b\n    Pigs and more\n"));
}

TEST_F(SearchOutputTest, OnlyTerminalsGetColoursUnlessAskedFor) {
  EXPECT_EQ(Search({"--color", "always", "--snippets", "dog"}).out,
            "\x1b[2m100\x1b[0m \x1b[36ma\x1b[0m\n    A cat and a cat\n"
            "    A cat and a cat and a \x1b[1;31mdog\x1b[0m.\n");
  EXPECT_EQ(Search({"--color", "always", "cat"}), Success(kPlain));
  EXPECT_EQ(Search({"--color", "auto", "--snippets", "dog"}).out.find('\x1b'), std::string::npos);
}

TEST_F(SearchOutputTest, ExplanationGoesToTheErrorStream) {
  const Outcome outcome = Search({"--explain", "cat -fish"});
  EXPECT_EQ(outcome.out, kPlain);
  EXPECT_EQ(outcome.err.find("AND: 2 documents, "), 0u) << outcome;
  EXPECT_NE(outcome.err.find("\n  cat and its forms (1 word): 2 documents, "), std::string::npos);
  EXPECT_NE(outcome.err.find("\n    fish and its forms (1 word): 1 document, "), std::string::npos);
}

TEST_F(SearchOutputTest, PrefixesStandForEveryWord) {
  std::string text;
  for (char first = 'a'; first <= 'z'; ++first) {
    for (const char* rest : {"a", "b", "c", "d"}) text += std::string("q") + first + rest + " ";
  }
  Add("many", text);
  EXPECT_EQ(Search({"q*"}), Success("100 many\n"));
  EXPECT_EQ(Search({"--explain", "q*"}).err.find("q* (104 words): 1 document, "), 0u);
}

TEST_F(SearchOutputTest, SuggestionsAreForMissingWords) {
  EXPECT_EQ(Search({"fsih"}), (Outcome{1, "", "did you mean: fish\n"}));
  EXPECT_EQ(Search({"-l", "fsih OR cat"}),
            (Outcome{0, "a\nb\n", "note: no document has 'fsih'; did you mean 'fish'?\n"}));
  EXPECT_EQ(Search({"cat AND fish"}), (Outcome{1, "", ""}));
}

TEST_F(SearchOutputTest, JsonHasHitsAndTotal) {
  const Json json = SearchJson({"--limit", "1", "cat"});
  EXPECT_EQ(json["schema"], 1);
  EXPECT_EQ(json["query"], "cat");
  EXPECT_EQ(json["total"], 2);
  struct stat file {};
  ASSERT_EQ(stat(Path("a").c_str(), &file), 0);
  EXPECT_EQ(json["hits"], (Json::array({{{"percent", 100},
                                         {"name", Path("a")},
                                         {"title", "A cat and a cat"},
                                         {"date", file.st_mtime}}})));
  EXPECT_FALSE(json.contains("explanation"));
}

TEST_F(SearchOutputTest, JsonHasSnippetsWhenAsked) {
  const Json hit = SearchJson({"--snippets", "dog"})["hits"][0];
  EXPECT_EQ(hit["snippet"][1], Json::parse(R"({"text": "dog", "match": true})"));
  EXPECT_FALSE(SearchJson({"dog"})["hits"][0].contains("snippet"));
}

TEST_F(SearchOutputTest, JsonHasTheExplanationWhenAsked) {
  const Outcome outcome = Search({"--json", "--explain", "cat"});
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(Json::parse(outcome.out)["explanation"]["part"], "cat and its forms");
}

TEST_F(SearchOutputTest, JsonNamesTheIndexOfEachHitWhereThereAreSeveral) {
  ASSERT_EQ(Run({"index", "other.index", "a"}).status, 0);
  const Outcome outcome =
      Run({"search", "--json", "--order", "name", "-i", "my.index", "-i", "other.index", "dog"});
  const Json hits = Json::parse(outcome.out)["hits"];
  ASSERT_EQ(hits.size(), 2u);
  EXPECT_EQ(hits[0]["index"], "my.index");
  EXPECT_EQ(hits[1]["index"], "other.index");
  EXPECT_FALSE(SearchJson({"dog"})["hits"][0].contains("index"));
}

TEST_F(SearchOutputTest, SnippetIsOfTheFileInWhoseIndexTheHitIs) {
  Write("sub/a", "dog barn\n");
  ASSERT_EQ(Run({"index", "other.index", "sub/a"}).status, 0);
  const Outcome outcome =
      Run({"search", "--snippets", "-i", "my.index", "-i", "other.index", "dog barn"});
  EXPECT_EQ(outcome.out.rfind("100 sub/a\n    dog barn\n    [dog] [barn]\n", 0), 0u) << outcome;
}

TEST_F(SearchOutputTest, JsonWithoutHitsHasSuggestions) {
  const Outcome outcome = Search({"--json", "fsih"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(Json::parse(outcome.out)["suggestions"], Json::parse(R"(["fish"])"));
  EXPECT_EQ(SearchJson({"42"})["total"], 0);
}

}  // namespace
}  // namespace kestan_tests
