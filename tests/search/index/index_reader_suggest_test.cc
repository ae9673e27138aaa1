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

class SuggestTest : public testing::Test {
 protected:
  SuggestTest() {
    auto writer = IndexWriter::Open(folder_ / "a");
    EXPECT_TRUE(writer.ok());
    for (const std::string text :
         {"roses noses", "roses poses", "hoses Stra\u00dfe", "gone roses"}) {
      Document document;
      document.name = std::to_string(++added_);
      document.text = text;
      EXPECT_TRUE(writer->Add(document).ok());
    }
    EXPECT_TRUE(writer->Remove("4").ok() && writer->Commit().ok());
  }

  IndexReader Opened() {
    auto reader = IndexReader::Open(folder_ / "a");
    EXPECT_TRUE(reader.ok());
    return std::move(*reader);
  }

  // Returns "WORD:DOCUMENTS ".
  std::string Suggested(const std::string& word, std::size_t limit = 0) {
    const auto terms = Opened().Suggest(word, limit);
    EXPECT_TRUE(terms.ok()) << terms.status().ToString();
    std::string text;
    for (const TermInfo& term : *terms)
      text += term.term + ":" + std::to_string(term.documents) + " ";
    return text;
  }

  kestan_tests::TempDir folder_;
  int added_ = 0;
};

TEST_F(SuggestTest, LikeliestComesFirstWithItsLivingDocuments) {
  EXPECT_EQ(Suggested("qoses"), "roses:2 hoses:1 noses:1 poses:1 ");
  EXPECT_EQ(Suggested("QOSES"), Suggested("qoses"));
}

TEST_F(SuggestTest, AreNoMoreThanTheLimit) {
  EXPECT_EQ(Suggested("qoses", 1), "roses:2 ");
  EXPECT_EQ(Suggested("qoses", 4), Suggested("qoses"));
}

TEST_F(SuggestTest, FirstThreeAreThoseOfASearch) {
  const auto found = Opened().Search("qoses");
  ASSERT_TRUE(found.ok());
  EXPECT_EQ(found->suggestions, (std::vector<std::string>{"roses", "hoses", "noses"}));
}

TEST_F(SuggestTest, WordThatADocumentHasInOneOfItsFormsHasNone) {
  EXPECT_EQ(Suggested("roses"), "");
  EXPECT_EQ(Suggested("rose"), "");
  EXPECT_EQ(Suggested("gone"), Suggested("gone"));
  EXPECT_EQ(Suggested("gon"), "");  // only a removed document has what is near
}

TEST_F(SuggestTest, EachOfSeveralWordsThatNoDocumentHasComesInOrder) {
  EXPECT_EQ(Suggested("strase noses xoses", 2), "strasse:1 roses:2 ");
}

TEST_F(SuggestTest, TextWithoutWordsHasNone) {
  EXPECT_EQ(Suggested(""), "");
  EXPECT_EQ(Suggested("?"), "");
}

TEST_F(SuggestTest, WordsComeInUtf8) { EXPECT_EQ(Suggested("strase"), "strasse:1 "); }

}  // namespace
}  // namespace kestan::search
