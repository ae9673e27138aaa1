#include "search/ranking/listing/term_frequency.h"

#include <gtest/gtest.h>

#include <string>

#include "search/query/evaluation/evaluator.h"
#include "search/query/query_parser.h"
#include "tests/support/index_test.h"

namespace kestan::search {
namespace {

std::string Times(const std::string& word, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += word + " ";
  return text;
}

class TermFrequencyTest : public kestan_tests::IndexTest {
 protected:
  void Add(const char* name, const std::string& text) {
    engine_.AddDocumentWords(name, text.c_str());
  }

  // Writes "CODE:TF " for each document that the clause `text` finds.
  std::string Frequencies(const std::string& text) {
    return Frequencies(*ParseQuery(text, DefaultOperator::kAnd));
  }

  std::string Frequencies(const Query& clause) {
    Evaluator evaluator(engine_);
    std::string line;
    for (const auto [code, tf] : TermFrequenciesIn(evaluator.Evaluate(clause, nullptr), clause)) {
      line += std::to_string(code) + ":" + std::to_string(tf) + " ";
    }
    return line;
  }
};

TEST_F(TermFrequencyTest, OccurrencesThatPercentagesRoundAwayAreCounted) {
  Add("once", "cat");
  Add("thrice", "cat cat dog cat");
  Add("often", Times("cat", 1000));
  EXPECT_EQ(Frequencies("cat"), "1:1 2:3 3:1000 ");
}

TEST_F(TermFrequencyTest, WordsThatAClauseStandsForAddUp) {
  Add("one", "cat cats cat");
  Add("two", "cats dog");
  EXPECT_EQ(Frequencies("cat*"), "1:3 2:1 ");
  EXPECT_EQ(Frequencies("cat~"), "1:3 2:1 ");
  EXPECT_EQ(Frequencies(Query{Query::Kind::kInflections, "cat", {}, 0, 0}), "1:3 2:1 ");
}

TEST_F(TermFrequencyTest, MoreOccurrencesThanAScoreHoldsAreCutToIt) {
  Add("one", Times("cat", 40000) + Times("cats", 25535));
  Add("two", Times("cat", 40000) + Times("cats", 25536));
  Add("three", "cats");
  engine_.FlushIndex();  // for the walk over all words
  EXPECT_EQ(Frequencies("cat*"), "1:65535 2:65535 3:1 ");
}

TEST_F(TermFrequencyTest, NearCountsMatchesOfTheLastOperandWithoutTheBonus) {
  Add("one", "big dog dog x x x x dog");
  Add("two", "big dog x big dog x dog big dog");
  EXPECT_EQ(Frequencies("\"big dog\""), "1:1 2:4 ");
  EXPECT_EQ(Frequencies("big NEAR/2 dog"), "1:2 2:4 ");
}

TEST_F(TermFrequencyTest, WordOfOneLetterIsCounted) {
  Add("one", "x y x");
  Add("two", "y");
  EXPECT_EQ(Frequencies("x"), "1:2 ");
}

TEST_F(TermFrequencyTest, WithoutPositionsWordsCountOnceEach) {
  engine_.SetOptionFlag(1);
  Add("one", "cat cat cats");
  Add("two", "cat cat");
  EXPECT_EQ(Frequencies("cat"), "1:1 2:1 ");
  EXPECT_EQ(Frequencies("cat*"), "1:2 2:1 ");
  EXPECT_EQ(Frequencies("cat NEAR/1 cats"), "1:1 ");
}

TEST_F(TermFrequencyTest, RemovedDocumentsAreLeftOut) {
  Add("one", "cat cat cat");
  Add("two", "cat");
  engine_.RemoveDocumentWords("one");
  EXPECT_EQ(Frequencies("cat"), "2:1 ");
  EXPECT_EQ(Frequencies("dog"), "");
}

}  // namespace
}  // namespace kestan::search
