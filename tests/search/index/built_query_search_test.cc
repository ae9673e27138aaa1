// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <kestan/search/index_reader.h>
#include <kestan/search/index_writer.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using Built = SearchQuery;
using Lines = std::vector<std::string>;

class BuiltQuerySearchTest : public testing::Test {
 protected:
  BuiltQuerySearchTest() {
    Write("a", true);
    Write("flat", false);
  }

  void Write(const std::string& index, bool with_positions) {
    WriterOptions options;
    options.with_positions = with_positions;
    options.language = "english";
    auto writer = IndexWriter::Open(folder_ / index, options);
    ASSERT_TRUE(writer.ok());
    const Lines texts = {"roses are red", "violets are blue, a rose is not",
                         "the dead end of a road", "end of the dead", "send e-mail"};
    for (const std::string& text : texts) {
      Document document;
      document.name = text.substr(0, text.find(' '));
      document.text = text;
      ASSERT_TRUE(writer->Add(document).ok());
    }
    ASSERT_TRUE(writer->Commit().ok());
  }

  IndexReader Opened(const std::string& index = "a") {
    auto reader = IndexReader::Open(folder_ / index);
    EXPECT_TRUE(reader.ok());
    return std::move(*reader);
  }

  // The names of what is found, the best first, each with a blank after it. Asks in all ways.
  std::string Names(const Built& query, const SearchOptions& options = {}) {
    const IndexReader reader = Opened();
    EXPECT_TRUE(reader.CheckQuery(query).ok());
    const auto found = reader.Search(query, options);
    EXPECT_TRUE(found.ok()) << found.status().ToString();
    std::string names;
    for (const Hit& hit : found->hits) names += hit.name + " ";
    EXPECT_EQ(*reader.Count(query, options), found->total);
    EXPECT_EQ(reader.Explain(query, options)->documents, found->total);
    std::size_t matches = 0;
    EXPECT_TRUE(
        reader.ForEachMatch(query, options, [&](const Match&) { return ++matches > 0; }).ok());
    EXPECT_EQ(matches, found->total);
    return names;
  }

  kestan_tests::TempDir folder_;
};

TEST_F(BuiltQuerySearchTest, EachKindFindsWhatItSays) {
  EXPECT_EQ(Names(Built::Word("roses")), "roses violets ");
  EXPECT_EQ(Names(Built::Prefix("viol")), "violets ");
  EXPECT_EQ(Names(Built::Phrase("dead end")), "the ");
  EXPECT_EQ(Names(Built::Word("e-mail")), "send ");
  EXPECT_EQ(Names(Built::Near(Built::Word("roses"), Built::Word("red"), 2)), "roses ");
  EXPECT_EQ(Names(Built::Near(Built::Word("roses"), Built::Word("red"), 1)), "");
  EXPECT_EQ(Names(Built::And({Built::Word("dead"), Built::Word("road")})), "the ");
  EXPECT_EQ(Names(Built::Or({Built::Word("red"), Built::Word("blue")})), "roses violets ");
  EXPECT_EQ(Names(Built::And({Built::Word("rose"), Built::Not(Built::Word("blue"))})), "roses ");
}

TEST_F(BuiltQuerySearchTest, AllOperandsOfAndAreRequiredAndNoneIsLeftOut) {
  EXPECT_EQ(Names(Built::And({Built::Word("roses"), Built::Word("road")})), "");
  EXPECT_EQ(Names(Built::And({Built::Word("the"), Built::Word("roses")})), "");
  EXPECT_EQ(Names(Built::Word("the roses")), "");
}

TEST_F(BuiltQuerySearchTest, NothingFallsBackOnSomeOfTheWordsAsATextDoes) {
  const IndexReader reader = Opened();
  EXPECT_EQ(reader.Search("(roses,road)")->total, 3U);
  EXPECT_EQ(reader.Search(Built::Word("roses,road"))->total, 0U);
}

TEST_F(BuiltQuerySearchTest, OrFindsWhatAnyOperandFindsWhereATextLeavesSomeOut) {
  SearchOptions options;
  options.words = WordsMean::kAny;
  const IndexReader reader = Opened();
  EXPECT_EQ(reader.Search("the OR red", options)->total, 1U);
  EXPECT_EQ(*reader.Count(Built::Or({Built::Word("the"), Built::Word("red")}), options), 3U);
  EXPECT_EQ(reader.Search("(NOT roses) OR red", options)->total, 0U);
  EXPECT_EQ(
      reader.Search(Built::Or({Built::Not(Built::Word("roses")), Built::Word("red")}), options)
          ->total,
      4U);
}

TEST_F(BuiltQuerySearchTest, WordsAreTakenAsTheyAreWrittenIfAllAreWanted) {
  SearchOptions options;
  options.words = WordsMean::kAll;
  EXPECT_EQ(Names(Built::Word("roses"), options), "roses ");
  options.words = WordsMean::kAny;
  EXPECT_EQ(Names(Built::Word("roses"), options), "roses violets ");
  EXPECT_EQ(Names(Built::Word("red blue"), options), "roses violets ");
}

TEST_F(BuiltQuerySearchTest, FilterDecidesWhichDocumentsAreFound) {
  SearchOptions options;
  options.filter = [](const FilteredDocument& document) { return document.name() != "roses"; };
  EXPECT_EQ(Opened().Search(Built::Word("roses"), options)->total, 1U);
  EXPECT_EQ(*Opened().Count(Built::Word("roses"), options), 1U);
}

TEST_F(BuiltQuerySearchTest, NotesNameMissingWordsAndSuggestOthers) {
  const auto found = Opened().Search(Built::Or({Built::Word("rosse"), Built::Word("blue")}));
  ASSERT_TRUE(found.ok());
  EXPECT_EQ(found->notes, Lines{"no document has 'rosse'; did you mean 'rose'?"});
  EXPECT_EQ(found->suggestions, (Lines{"rose", "roses"}));
}

TEST_F(BuiltQuerySearchTest, NotesNameWordsThatAreCut) {
  const std::string word(65, 'x');
  const auto found = Opened().Search(Built::Or({Built::Word(word), Built::Phrase("blue " + word)}));
  ASSERT_TRUE(found.ok());
  ASSERT_FALSE(found->notes.empty());
  EXPECT_EQ(found->notes.front(),
            "'xxxxxxxxxxxxxxxxxxxx...', 'blue xxxxxxxxxxxxxxx...' are too long: their first 64 "
            "characters count");
  const auto fits = Opened().Search(Built::Phrase("roses " + std::string(64, 'x')));
  ASSERT_TRUE(fits.ok());
  EXPECT_EQ(fits->notes, Lines());
}

TEST_F(BuiltQuerySearchTest, IndexWithoutPositionsTakesNearAndPhrasesForAnd) {
  const auto found = Opened("flat").Search(Built::Phrase("dead end"));
  ASSERT_TRUE(found.ok());
  EXPECT_EQ(found->total, 2U);
  EXPECT_EQ(found->notes,
            Lines{"the index keeps no positions, so NEAR and quotes are taken for AND"});
}

TEST_F(BuiltQuerySearchTest, QueryThatMakesNoSenseIsTheSameErrorOfEachWayToAsk) {
  const IndexReader reader = Opened();
  const Built query = Built::And({Built::Word("cat"), Built::Word("?")});
  const Status status = reader.CheckQuery(query);
  EXPECT_EQ(status.code(), StatusCode::kInvalidQuery);
  EXPECT_EQ(status.message(), "the word '?' holds no letters or digits");
  EXPECT_FALSE(status.column());
  EXPECT_EQ(reader.Search(query).status().message(), status.message());
  EXPECT_EQ(reader.Count(query).status().message(), status.message());
  EXPECT_EQ(reader.Explain(query).status().message(), status.message());
  const auto visit = [](const Match&) { return true; };
  EXPECT_EQ(reader.ForEachMatch(query, {}, visit).message(), status.message());
}

TEST_F(BuiltQuerySearchTest, TenThousandOperandsAreAnsweredAtOnce) {
  Built chain = Built::Word("roses");
  std::vector<Built> operands;
  for (int i = 0; i < 10'000; ++i) {
    const Built word = Built::Phrase("word" + std::to_string(i));
    chain = Built::Or({chain, word});
    operands.push_back(word);
  }
  EXPECT_EQ(Opened().Search(chain)->total, 2U);
  EXPECT_EQ(Opened().Search(Built::Or(operands))->total, 0U);
}

TEST_F(BuiltQuerySearchTest, SnippetShowsWhatWasBuilt) {
  const auto found = Opened().Search(Built::Phrase("dead end"));
  ASSERT_TRUE(found.ok());
  EXPECT_EQ(found->matched_terms, (Lines{"dead", "end"}));
}

}  // namespace
}  // namespace kestan::search
