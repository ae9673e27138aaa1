// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/search_filter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "cli/console/message.h"
#include "tests/support/temp_dir.h"

namespace kestan_cli {
namespace {

using kestan::search::Document;
using kestan::search::FilteredDocument;
using kestan::search::IndexReader;
using kestan::search::IndexWriter;

constexpr std::time_t kNow = 1'709'251'200;  // 2024-03-01

Document Named(const std::string& name, const std::string& title, const std::string& facts) {
  Document document;
  document.name = name;
  document.words = "x";
  document.title = title;
  if (!facts.empty()) {
    document.host_data = "size=1 mtime=" + facts;
    const std::size_t hash = document.host_data.find('|');
    document.host_data.replace(hash, 1, ".000000000 hash=00112233445566778899aabbccddeeff");
  }
  return document;
}

class SearchFilterTest : public testing::Test {
 protected:
  SearchFilterTest() {
    setenv("TZ", "UTC", 1);
    auto writer = IndexWriter::Open(path_);
    for (const Document& document :
         {Named("/d/Air.html.gz", "Boundary layers in air", "1709251199|"),
          Named("/d/wing.txt", "Flow over a wing", "1709251200|"),
          Named("/m/box.mbox#1", "Re: boundary",
                "1709251200| in=11 at=0 date=1546300800 from=\"Ann Other <ann@example.org>\""),
          Named("/m/cur/1.host", "Wing", "1709251200| from=\"J\xc3\xbcrgen <j@example.com>\""),
          Named("note", "", "")}) {
      EXPECT_TRUE(writer->Add(document).ok());
    }
    EXPECT_TRUE(writer->Commit().ok());
  }

  // The names of the documents that pass the filters of `query`, each with a blank after it.
  std::string Passing(const std::string& query) const {
    const SearchFilter filter(TakeFilters(query).filters, kNow);
    kestan::search::SearchOptions options;
    options.limit = 0;
    options.filter = [&filter](const FilteredDocument& document) {
      return filter.Passes(document);
    };
    const auto results = IndexReader::Open(path_)->Search("", options);
    EXPECT_TRUE(results.ok());
    std::string names;
    for (const auto& hit : results->hits) names += hit.name + " ";
    return names;
  }

  static std::string Refusal(const std::string& query) {
    try {
      const SearchFilter filter(TakeFilters(query).filters, kNow);
    } catch (const CommandError& error) {
      return error.what();
    }
    return "";
  }

  const kestan_tests::TempDir dir_;
  const std::string path_ = dir_ / "index";
};

TEST_F(SearchFilterTest, PathOccursInTheName) {
  EXPECT_EQ(Passing("path:AIR"), "/d/Air.html.gz ");
  EXPECT_EQ(Passing("path:/d/"), "/d/Air.html.gz /d/wing.txt ");
  EXPECT_EQ(Passing("path:*.txt"), "/d/wing.txt ");
  EXPECT_EQ(Passing("path:/*.txt"), "");
}

TEST_F(SearchFilterTest, TypeIsAnExtensionOrAKind) {
  EXPECT_EQ(Passing("type:html"), "/d/Air.html.gz ");
  EXPECT_EQ(Passing("type:.HTML"), "/d/Air.html.gz ");
  EXPECT_EQ(Passing("type:text"), "/d/wing.txt note ");
}

TEST_F(SearchFilterTest, MailIsWhatHasASenderOrADateOfItsOwn) {
  EXPECT_EQ(Passing("type:mail"), "/m/box.mbox#1 /m/cur/1.host ");
  EXPECT_EQ(Passing("type:mbox"), "/m/box.mbox#1 ");
}

TEST_F(SearchFilterTest, PartOfAnArchiveIsOfItsOwnTypeAndOfThatOfTheArchive) {
  auto writer = IndexWriter::Open(path_);
  for (const char* const name : {"/a.zip#b.html", "/a.zip#c.tar.gz#d/README", "/a.zip##e.pdf"}) {
    ASSERT_TRUE(writer->Add(Named(name, "", "1709251200| in=6 at=0")).ok());
  }
  ASSERT_TRUE(writer->Commit().ok());
  EXPECT_EQ(Passing("type:zip"), "/a.zip##e.pdf /a.zip#b.html /a.zip#c.tar.gz#d/README ");
  EXPECT_EQ(Passing("type:html path:zip"), "/a.zip#b.html ");
  EXPECT_EQ(Passing("type:text path:zip"), "/a.zip#c.tar.gz#d/README ");
  EXPECT_EQ(Passing("type:tar"), "/a.zip#c.tar.gz#d/README ");
  EXPECT_EQ(Passing("type:pdf"), "/a.zip##e.pdf ");
}

TEST_F(SearchFilterTest, AfterADayIsOnItOrLater) {
  EXPECT_EQ(Passing("after:2024-03-01"), "/d/wing.txt /m/cur/1.host ");
  EXPECT_EQ(Passing("after:today"), "/d/wing.txt /m/cur/1.host ");
  EXPECT_EQ(Passing("after:yesterday"), "/d/Air.html.gz /d/wing.txt /m/cur/1.host ");
}

TEST_F(SearchFilterTest, BeforeADayIsBeforeItBegins) {
  EXPECT_EQ(Passing("before:2024-03"), "/d/Air.html.gz /m/box.mbox#1 ");
  EXPECT_EQ(Passing("before:2019"), "");
  EXPECT_EQ(Passing("before:2019-01-02"), "/m/box.mbox#1 ");
}

TEST_F(SearchFilterTest, DocumentWithoutADatePassesNeither) {
  EXPECT_EQ(Passing("after:0001").find("note"), std::string::npos);
  EXPECT_EQ(Passing("before:9999").find("note"), std::string::npos);
  EXPECT_EQ(Passing("-after:0001"), "note ");
}

TEST_F(SearchFilterTest, TitleHoldsTheWordsInARow) {
  EXPECT_EQ(Passing("title:boundary"), "/d/Air.html.gz /m/box.mbox#1 ");
  EXPECT_EQ(Passing("title:\"boundary layers\""), "/d/Air.html.gz ");
  EXPECT_EQ(Passing("title:flo*"), "/d/wing.txt ");
  EXPECT_EQ(Passing("title:flo"), "");
}

TEST_F(SearchFilterTest, SenderHoldsTheWordsInARow) {
  for (const char* const query : {"from:ann", "from:\"Ann Other\"", "from:ann@example.org"}) {
    EXPECT_EQ(Passing(query), "/m/box.mbox#1 ") << query;
  }
  EXPECT_EQ(Passing("from:jurgen"), "/m/cur/1.host ");
  EXPECT_EQ(Passing("from:\"example ann\""), "");
}

TEST_F(SearchFilterTest, AllFiltersOfDifferentKeysHold) {
  EXPECT_EQ(Passing("title:wing type:txt after:2024"), "/d/wing.txt ");
  EXPECT_EQ(Passing("title:wing type:html"), "");
}

TEST_F(SearchFilterTest, OneOfSeveralTypesPathsOrSendersIsEnough) {
  EXPECT_EQ(Passing("type:html type:txt"), "/d/Air.html.gz /d/wing.txt ");
  EXPECT_EQ(Passing("path:note path:wing"), "/d/wing.txt note ");
  EXPECT_EQ(Passing("from:ann from:jurgen"), "/m/box.mbox#1 /m/cur/1.host ");
  EXPECT_EQ(Passing("type:html type:txt path:wing path:note"), "/d/wing.txt ");
}

TEST_F(SearchFilterTest, AllTitlesAndDaysHold) {
  EXPECT_EQ(Passing("title:flow title:wing"), "/d/wing.txt ");
  EXPECT_EQ(Passing("after:2019 after:2024-03"), "/d/wing.txt /m/cur/1.host ");
}

TEST_F(SearchFilterTest, AllExcludedOnesAreLeftOut) {
  EXPECT_EQ(Passing("-type:mail -type:html"), "/d/wing.txt note ");
  EXPECT_EQ(Passing("path:/d/ -path:air"), "/d/wing.txt ");
  EXPECT_EQ(Passing("NOT title:wing -from:ann"), "/d/Air.html.gz note ");
}

TEST_F(SearchFilterTest, NoFiltersAreEmptyAndPassAll) {
  EXPECT_TRUE(SearchFilter({}, kNow).empty());
  EXPECT_EQ(Passing("").size(), Passing("path:*").size() + Passing("-path:*").size());
}

TEST_F(SearchFilterTest, ValueThatCannotBeReadIsAnError) {
  EXPECT_EQ(Refusal("after:soon"),
            "after: takes a day as 2024-03-01, 2024-03, 2024, today or yesterday, not 'soon'");
  EXPECT_EQ(Refusal("before:2024-02-30"),
            "before: takes a day as 2024-03-01, 2024-03, 2024, today or yesterday, not "
            "'2024-02-30'");
  EXPECT_EQ(Refusal("title:?"), "title: takes words, and '?' holds no letters or digits");
  EXPECT_EQ(Refusal("from:<>"), "from: takes words, and '<>' holds no letters or digits");
  EXPECT_EQ(Refusal("title:x"), "");
}

TEST_F(SearchFilterTest, WordsOfTitlesMakeAQueryThatLeavesOutNothing) {
  const auto query = [](const std::string& text) {
    return SearchFilter(TakeFilters(text).filters, kNow).QueryForTitles();
  };
  EXPECT_EQ(query("title:Wing"), "(wing) OR NOT (wing)");
  EXPECT_EQ(query("title:\"a b\" title:c*"), "(a AND b AND c*) OR NOT (a AND b AND c*)");
  EXPECT_EQ(query("-title:wing type:pdf"), "");
}

}  // namespace
}  // namespace kestan_cli
