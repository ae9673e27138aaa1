// SPDX-License-Identifier: GPL-3.0-or-later
// Filters in queries, and what is shown of mail, as users see them.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class SearchFiltersTest : public CommandTest {
 protected:
  void SetUp() override {
    Write("d/air", "Boundary layers\nin air, and a cat\n");
    Write("d/page.html", "<title>The cat</title><p>and air, and layers</p>");
    Write("d/1.eml", Message("Ann Other <ann@example.org>", "15 Mar 2024", "Re: air"));
    Write("d/2.eml", Message("bob@example.org", "15 May 2025", "No layers"));
    ASSERT_EQ(Run({"index", "my.index", "d"}).status, 0);
  }

  static std::string Message(const std::string& from, const std::string& day,
                             const std::string& subject) {
    return "From: " + from + "\nTo: list@example.org\nDate: " + day +
           " 12:00:00 +0000\nSubject: " + subject + "\n\nA cat in air.\n";
  }

  Outcome Search(std::vector<std::string> query) {
    query.insert(query.begin(), {"search", "-l", "my.index"});
    return Run(query);
  }
};

TEST_F(SearchFiltersTest, FiltersTakeDocumentsAway) {
  EXPECT_EQ(Search({"--order", "name", "cat type:mail"}), Success("d/1.eml\nd/2.eml\n"));
  EXPECT_EQ(Search({"cat", "type:mail", "from:ann"}), Success("d/1.eml\n"));
  EXPECT_EQ(Search({"cat NOT type:mail path:page"}), Success("d/page.html\n"));
  EXPECT_EQ(Search({"cat -type:mail -type:html"}), Success("d/air\n"));
  EXPECT_EQ(Search({"cat before:2025 after:2024-03-14"}), Success("d/1.eml\n"));
  EXPECT_EQ(Search({"cat path:nowhere"}), (Outcome{1, "", ""}));
}

TEST_F(SearchFiltersTest, TotalAndLimitAreThoseOfWhatPasses) {
  EXPECT_EQ(Run({"search", "--count", "my.index", "cat type:mail"}), Success("2\n"));
  EXPECT_EQ(Search({"--limit", "1", "cat -path:air -path:page"}), Success("d/2.eml\n"));
  EXPECT_EQ(Search({"--order", "name", "--limit", "1", "cat type:html"}), Success("d/page.html\n"));
}

TEST_F(SearchFiltersTest, FiltersAloneFindAllThatPass) {
  EXPECT_EQ(Search({"type:mail"}), Success("d/1.eml\nd/2.eml\n"));
  EXPECT_EQ(Run({"search", "my.index", "type:html"}), Success("100 d/page.html\n"));
  EXPECT_EQ(Run({"search", "--count", "my.index", "-type:html"}), Success("3\n"));
}

TEST_F(SearchFiltersTest, TitleAloneRanksByItsWords) {
  EXPECT_EQ(Search({"title:air"}), Success("d/1.eml\n"));
  const Outcome titles = Search({"title:lay*"});
  EXPECT_EQ(titles.status, 0);
  EXPECT_EQ(titles.out.size(), std::string("d/air\nd/2.eml\n").size());
  EXPECT_EQ(Search({"title:\"boundary layers\""}), Success("d/air\n"));
}

// A title may be set by hand: its words are then not in the text.
TEST_F(SearchFiltersTest, TitleAloneFindsTitlesWhoseWordsAreNotInTheText) {
  ASSERT_EQ(Run({"title", "set", "my.index", "d/page.html", "A fine zebra"}).status, 0);
  EXPECT_EQ(Search({"title:zebra"}).out, "d/page.html\n");
  EXPECT_EQ(Search({"air title:zebra"}), Success("d/page.html\n"));
}

TEST_F(SearchFiltersTest, WhereNoDocumentThatPassesHasAllWordsSomeAreEnough) {
  EXPECT_EQ(Search({"boundary cat type:html"}),
            (Outcome{0, "d/page.html\n",
                     "note: no document that passes the filters has all of these words; these have "
                     "some of them\n"}));
}

TEST_F(SearchFiltersTest, NoteTellsOfAFilterInAPartOfTheQuery) {
  EXPECT_EQ(Search({"air OR type:html"}),
            (Outcome{0, "d/page.html\n",
                     "note: 'type:html': a filter holds for the whole query, not for a part of "
                     "it\n"}));
  EXPECT_NE(Run({"search", "--count", "my.index", "air OR type:html"}).err, "");
}

TEST_F(SearchFiltersTest, FilterIsNoForeignSyntax) {
  EXPECT_EQ(Search({"cat path:*age.h?ml"}), Success("d/page.html\n"));
}

TEST_F(SearchFiltersTest, FilterInQuotesAndOtherKeysAreText) {
  Write("d/note", "see type:html and foo:bar\n");
  ASSERT_EQ(Run({"index", "my.index", "d"}).status, 0);
  EXPECT_EQ(Search({"\"type:html\""}), Success("d/note\n"));
  EXPECT_EQ(Search({"foo:bar"}), Success("d/note\n"));
}

TEST_F(SearchFiltersTest, MistakesEndTheCommandWithAReason) {
  EXPECT_EQ(Search({"cat after:"}),
            Failure("after: needs a value right after it, as in after:2024-03-01; in double quotes "
                    "it is text"));
  EXPECT_EQ(Search({"cat before:2024-13"}),
            Failure("before: takes a day as 2024-03-01, 2024-03, 2024, today or yesterday, not "
                    "'2024-13'"));
}

TEST_F(SearchFiltersTest, ExplanationNamesTheFilters) {
  const std::string err = Run({"search", "--explain", "my.index", "cat -type:mail path:air"}).err;
  EXPECT_EQ(err.find("FILTER (NOT type:mail path:air): 1 document, "), 0u) << err;
}

TEST_F(SearchFiltersTest, JsonHasTheSenderAndTheDateOfAMessage) {
  const auto json =
      nlohmann::json::parse(Run({"search", "--json", "my.index", "cat from:ann"}).out);
  ASSERT_EQ(json["hits"].size(), 1u);
  EXPECT_EQ(json["hits"][0]["from"], "Ann Other <ann@example.org>");
  EXPECT_EQ(json["hits"][0]["date"], 1'710'504'000);
  EXPECT_EQ(json["query"], "cat from:ann");
  const auto page = nlohmann::json::parse(Run({"search", "--json", "my.index", "type:html"}).out);
  EXPECT_EQ(page["hits"][0].count("from"), 0u);
}

TEST_F(SearchFiltersTest, PipesGetNoDatesAndNoSenders) {
  EXPECT_EQ(Run({"search", "--snippets", "my.index", "from:ann"}),
            Success("100 d/1.eml\n    Re: air\n"));
}

}  // namespace
}  // namespace kestan_tests
