// Evaluating a word, by itself or for the words that it stands for.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "search/query/evaluation/evaluator.h"
#include "search/query/evaluation/operators.h"
#include "search/query/query_parser.h"
#include "tests/support/index_test.h"

namespace kestan::search {
namespace {

using kestan_tests::Units;

using Strings = std::vector<std::string>;

class WordOperatorTest : public kestan_tests::IndexTest {
 protected:
  // What evaluating one word finds and leaves in the evaluator.
  struct Outcome {
    std::string listing;
    std::set<std::string> matched_terms;
    Strings notes;
    std::string note_of_explanation;
  };

  Outcome Evaluate(const std::string& text) { return Evaluate(*ParseQuery(text)); }

  Outcome Evaluate(const Query& leaf) {
    Evaluator evaluator(engine_);
    Explanation explanation;
    const ResultSet found = EvaluateWord(leaf, &explanation, evaluator);
    return {engine_.QueryResults(found.id()), evaluator.matched_terms(), evaluator.notes(),
            explanation.note};
  }
};

TEST_F(WordOperatorTest, WordFindsItsDocuments) {
  engine_.AddDocumentWords("one", "cat cat");
  engine_.AddDocumentWords("two", "cat dog");
  const Outcome outcome = Evaluate("cat");
  EXPECT_EQ(outcome.listing, "100 one\n50 two\n");
  EXPECT_EQ(outcome.matched_terms, std::set<std::string>({"cat"}));
  EXPECT_EQ(outcome.note_of_explanation, "");
}

TEST_F(WordOperatorTest, UnknownWordFindsNothingAndMatchesNoTerm) {
  engine_.AddDocumentWords("one", "cat");
  const Outcome outcome = Evaluate("cow");
  EXPECT_EQ(outcome.listing, "");
  EXPECT_TRUE(outcome.matched_terms.empty());
}

TEST_F(WordOperatorTest, PrefixUnitesItsWordsAndIsExplained) {
  engine_.AddDocumentWords("one", "cat cats");
  engine_.AddDocumentWords("two", "cats");
  engine_.AddDocumentWords("three", "dog");
  const Outcome outcome = Evaluate("ca*");
  EXPECT_EQ(outcome.listing, "100 one\n50 two\n");
  EXPECT_EQ(outcome.matched_terms, std::set<std::string>({"cat", "cats"}));
  EXPECT_EQ(outcome.note_of_explanation, "2 words");
  EXPECT_TRUE(outcome.notes.empty());
}

TEST_F(WordOperatorTest, ExplanationMayBeMissing) {
  engine_.AddDocumentWords("one", "cat");
  Evaluator evaluator(engine_);
  const ResultSet found = EvaluateWord(*ParseQuery("ca*"), nullptr, evaluator);
  EXPECT_EQ(found.CountDocuments(), 1u);
}

TEST_F(WordOperatorTest, ExpansionThatIsCutIsNoted) {
  std::string text;
  for (std::size_t i = 0; i < 150; ++i) text += "p" + std::string(1 + i % 50, "abc"[i / 50]) + " ";
  engine_.AddDocumentWords("many", text.c_str());
  const Outcome outcome = Evaluate("p*");
  EXPECT_EQ(outcome.matched_terms.size(), 100u);
  EXPECT_EQ(outcome.notes, Strings({"p* stands for " + outcome.note_of_explanation}));
}

// The shrink of another program leaves postings of words of one letter behind: here those of code
// 2, which has no document.
TEST_F(WordOperatorTest, PostingsWithoutADocumentDoNotCountForWordsOfOneLetter) {
  for (const std::string word : {"x", "x-"}) {
    engine_.CloseIndex();
    std::filesystem::remove(path_);
    ASSERT_EQ(engine_.OpenIndex(path_.c_str(), 1), 0);
    engine_.AddDocumentWords("one", "cat");
    engine_.AddDocumentWords("two", "cat");
    engine_.RemoveDocumentWords("two");
    engine_.ShrinkIndex();
    PlantAndReopen({{word, Units({1, 1, 1, 2, 4, 1, 2, 3, 4})}});
    Query leaf = *ParseQuery("a");
    leaf.word = word;  // the parser makes no word with a hyphen
    const Outcome outcome = Evaluate(leaf);
    EXPECT_EQ(outcome.listing, "100 one\n") << word;
    EXPECT_EQ(outcome.matched_terms, std::set<std::string>({word}));
  }
}

TEST_F(WordOperatorTest, LongerWordKeepsTheScoresOfTheEngine) {
  engine_.AddDocumentWords("one", "cat");
  engine_.AddDocumentWords("two", "cat");
  engine_.RemoveDocumentWords("two");
  engine_.ShrinkIndex();
  PlantAndReopen({{"xy", Units({1, 1, 1, 2, 4, 1, 2, 3, 4})}});
  EXPECT_EQ(Evaluate("xy").listing, "25 one\n");
}

}  // namespace
}  // namespace kestan::search
