// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <kestan/search/index_reader.h>
#include <kestan/search/index_writer.h>

#include <string>
#include <utility>

#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

class StrictSearchTest : public testing::Test {
 protected:
  StrictSearchTest() {
    strict_.strict = true;
    auto writer = IndexWriter::Open(folder_ / "a");
    Document document;
    document.name = "1";
    document.text = "the cat and the dog";
    EXPECT_TRUE(writer.ok() && writer->Add(document).ok() && writer->Commit().ok());
  }

  IndexReader Opened() {
    auto reader = IndexReader::Open(folder_ / "a");
    EXPECT_TRUE(reader.ok());
    return std::move(*reader);
  }

  kestan_tests::TempDir folder_;
  SearchOptions strict_;
};

TEST_F(StrictSearchTest, MistakeIsAnErrorOfEachWayToAsk) {
  const IndexReader reader = Opened();
  const std::string text = "cat (dog";
  const auto found = reader.Search(text, strict_);
  EXPECT_EQ(found.status().code(), StatusCode::kInvalidQuery);
  EXPECT_EQ(found.status().column(), 4U);
  EXPECT_EQ(found.status().message(), "the parenthesis has no partner");
  EXPECT_EQ(reader.Count(text, strict_).status().code(), StatusCode::kInvalidQuery);
  EXPECT_EQ(reader.Explain(text, strict_).status().code(), StatusCode::kInvalidQuery);
  const auto visit = [](const Match&) { return true; };
  EXPECT_EQ(reader.ForEachMatch(text, strict_, visit).code(), StatusCode::kInvalidQuery);
}

TEST_F(StrictSearchTest, WithoutItTheMistakeIsLeftOut) {
  EXPECT_EQ(Opened().Search("cat (dog")->total, 1U);
}

TEST_F(StrictSearchTest, WordsThatSayLittleAreNoMistakes) {
  const auto found = Opened().Search("the cat", strict_);
  ASSERT_TRUE(found.ok()) << found.status().ToString();
  EXPECT_EQ(found->total, 1U);
  EXPECT_EQ(found->notes.size(), 1U);
}

TEST_F(StrictSearchTest, BlankTextIsAMistakeUnlessAFilterMakesItMeanAllDocuments) {
  const IndexReader reader = Opened();
  EXPECT_EQ(reader.Search(" ", strict_).status().column(), 0U);
  strict_.filter = [](const FilteredDocument&) { return true; };
  EXPECT_EQ(reader.Search(" ", strict_)->total, 1U);
  EXPECT_EQ(reader.Search("()", strict_).status().code(), StatusCode::kInvalidQuery);
}

TEST_F(StrictSearchTest, QueryThatIsBuiltHasNoTextToBeWrong) {
  EXPECT_EQ(Opened().Search(SearchQuery::Word("(cat"), strict_)->total, 1U);
}

}  // namespace
}  // namespace kestan::search
