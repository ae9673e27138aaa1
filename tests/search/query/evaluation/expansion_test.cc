#include "search/query/evaluation/expansion.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "search/query/query_parser.h"
#include "tests/support/index_test.h"

namespace kestan::search {
namespace {

using Words = std::vector<std::string>;

class QueryExpanderTest : public kestan_tests::IndexTest {
 protected:
  // Adds `count` words that begin with p and have different lengths.
  void AddWords(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
      text += "p" + std::string(1 + i % 50, "abc"[i / 50]) + " ";
    }
    engine_.AddDocumentWords("many", text.c_str());
  }

  Expansion Expanded(const std::string& text) {
    IndexWords words(ReaderOf(engine_));
    QueryExpander expander(words);
    return expander.Expand(*ParseQuery(text));
  }
};

TEST_F(QueryExpanderTest, AWordStandsForItself) {
  engine_.AddDocumentWords("one", "layer");
  EXPECT_EQ(Expanded("flow").words, Words{"flow"});
  EXPECT_EQ(Expanded("flow").note, "");
}

TEST_F(QueryExpanderTest, PatternsStandForWordsOfTheIndex) {
  engine_.AddDocumentWords("one", "layer lay bayer");
  EXPECT_EQ(Expanded("lay*").words, (Words{"lay", "layer"}));
  EXPECT_EQ(Expanded("lay*").note, "2 words");
  EXPECT_EQ(Expanded("laye~1").words, (Words{"lay", "layer"}));
  EXPECT_EQ(Expanded("b*").note, "1 word");
  EXPECT_EQ(Expanded("z*").note, "0 words");
}

TEST_F(QueryExpanderTest, UpToTheLimitAllWordsStay) {
  AddWords(kMaxExpansions);
  EXPECT_EQ(Expanded("p*").words.size(), kMaxExpansions);
  EXPECT_FALSE(Expanded("p*").is_cut);
  EXPECT_EQ(Expanded("p*").note, "100 words");
}

TEST_F(QueryExpanderTest, BeyondTheLimitTheMostFrequentStay) {
  AddWords(kMaxExpansions + 1);
  engine_.AddDocumentWords("more", "pc");
  const Expansion expansion = Expanded("p*");
  EXPECT_TRUE(expansion.is_cut);
  EXPECT_EQ(expansion.words.size(), kMaxExpansions);
  EXPECT_EQ(expansion.words.front(), "pc");
  EXPECT_EQ(expansion.note, "only the 100 most frequent of 101 words");
}

TEST_F(QueryExpanderTest, NoteOfACutFuzzyMatchNamesTheClosest) {
  std::string text;
  for (char a = 'a'; a <= 'k'; ++a) {
    for (char b = 'a'; b <= 'k'; ++b) text += std::string("x") + a + b + " ";
  }
  engine_.AddDocumentWords("one", text.c_str());
  EXPECT_EQ(Expanded("xyz~2").note, "only the 100 closest and most frequent of 121 words");
}

}  // namespace
}  // namespace kestan::search
