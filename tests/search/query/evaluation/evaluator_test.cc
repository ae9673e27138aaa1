#include "search/query/evaluation/evaluator.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "search/query/query_parser.h"
#include "tests/support/index_test.h"

namespace kestan::search {
namespace {

using Words = std::vector<std::string>;

class EvaluatorTest : public kestan_tests::IndexTest {
 protected:
  void SetUp() override {
    kestan_tests::IndexTest::SetUp();
    engine_.AddDocumentWords("one", "layer of flow");
    engine_.AddDocumentWords("two", "layers Layer");
    engine_.AddDocumentWords("three", "bayer flows");
  }

  // The listing of `text`.
  std::string Found(const std::string& text,
                    DefaultOperator default_operator = DefaultOperator::kAnd) {
    Evaluator evaluator(engine_);
    return engine_.QueryResults(
        evaluator.Evaluate(*ParseQuery(text, default_operator), nullptr).id());
  }

  // The terms that `text` matches.
  std::set<std::string> Matched(const std::string& text) {
    Evaluator evaluator(engine_);
    evaluator.Evaluate(*ParseQuery(text), nullptr);
    return evaluator.matched_terms();
  }

  Words Suggested(const std::string& text) {
    return Evaluator(engine_).SuggestionsFor(*ParseQuery(text));
  }

  // Adds 150 words that begin with p; p100 is in two documents.
  void AddManyWords() {
    std::string text;
    for (std::size_t i = 0; i < 150; ++i)
      text += "p" + std::string(1 + i % 50, "abc"[i / 50]) + " ";
    engine_.AddDocumentWords("many", text.c_str());
    engine_.AddDocumentWords("more", "pccc");
  }
};

TEST_F(EvaluatorTest, PrefixFindsAllItsWords) {
  EXPECT_EQ(Found("lay*"), "50 one\n100 two\n");
  EXPECT_EQ(Found("Lay*"), "100 two\n");
  EXPECT_EQ(Found("z*"), "");
}

TEST_F(EvaluatorTest, FuzzyFindsWordsWithinItsEdits) {
  EXPECT_EQ(Found("baler~1"), "100 three\n");
  EXPECT_EQ(Found("baler~2"), "100 one\n100 two\n100 three\n");
}

TEST_F(EvaluatorTest, InflectionsFindEachOther) {
  EXPECT_EQ(Found("flowing", DefaultOperator::kOr), "100 one\n100 three\n");
  EXPECT_EQ(Found("Layer", DefaultOperator::kOr), "100 two\n");
}

TEST_F(EvaluatorTest, ExpansionsCanBeNear) {
  EXPECT_EQ(Found("lay* NEAR/2 flo*"), "100 one\n");
  EXPECT_EQ(Found("lay* NEAR/1 flo*"), "");
}

TEST_F(EvaluatorTest, MatchedTermsAreThoseThatTheIndexHas) {
  EXPECT_EQ(Matched("lay* OR cow OR of"), (std::set<std::string>{"layer", "layers", "of"}));
}

TEST_F(EvaluatorTest, TermsUnderNotAreNotMatched) {
  EXPECT_EQ(Matched("flow -layer -(-of)"), (std::set<std::string>{"flow", "of"}));
}

TEST_F(EvaluatorTest, MostFrequentExpansionsStayWhenCut) {
  AddManyWords();
  Evaluator evaluator(engine_);
  Explanation explanation;
  evaluator.Evaluate(*ParseQuery("p*"), &explanation);
  EXPECT_EQ(evaluator.matched_terms().size(), kMaxExpansions);
  EXPECT_EQ(evaluator.matched_terms().count("pccc"), 1u);
  EXPECT_EQ(evaluator.notes(), Words{"p* stands for only the 100 most frequent of 150 words"});
  EXPECT_EQ(explanation.note, "only the 100 most frequent of 150 words");
}

TEST_F(EvaluatorTest, ExpansionsUpToTheLimitAreNotCut) {
  AddManyWords();
  Evaluator evaluator(engine_);
  evaluator.Evaluate(*ParseQuery("pa* OR pb*"), nullptr);
  EXPECT_EQ(evaluator.matched_terms().size(), 100u);
  EXPECT_EQ(evaluator.notes(), Words{});
}

TEST_F(EvaluatorTest, ExplanationCountsDocumentsOfEveryPart) {
  Explanation explanation;
  Evaluator(engine_).Evaluate(*ParseQuery("lay* -flow"), &explanation);
  EXPECT_EQ(explanation.label, "AND");
  EXPECT_EQ(explanation.documents, 1u);
  ASSERT_EQ(explanation.parts.size(), 2u);
  EXPECT_EQ(explanation.parts[0].label, "lay*");
  EXPECT_EQ(explanation.parts[0].documents, 2u);
  EXPECT_EQ(explanation.parts[0].note, "2 words");
  EXPECT_EQ(explanation.parts[1].label, "NOT");
  EXPECT_EQ(explanation.parts[1].parts[0].label, "flow");
}

TEST_F(EvaluatorTest, EqualOperandsCountOnce) {
  EXPECT_EQ(Found("lay* OR flow OR lay* OR lay*"), Found("lay* OR flow"));
  EXPECT_EQ(Found("layer flow layer"), Found("layer flow"));
  EXPECT_EQ(Found("layer OR layer"), Found("layer"));
  EXPECT_EQ(Found("(flow OR layer) bayer OR (flow OR layer)"),
            Found("(flow OR layer OR flow) bayer OR (flow OR layer)"));
}

TEST_F(EvaluatorTest, EqualWordsInARowAreInDifferentPlaces) {
  engine_.AddDocumentWords("four", "very very good");
  engine_.AddDocumentWords("five", "very good");
  EXPECT_EQ(Found("\"very very\""), "100 four\n");
}

TEST_F(EvaluatorTest, OperandsThatDifferInOnePlaceAreNotEqual) {
  EXPECT_NE(Found("layer OR Layer"), Found("layer"));
  EXPECT_NE(Found("bayer~1 OR bayer~2"), Found("bayer~2"));
  EXPECT_NE(Found("\"layer flow\" OR layer NEAR/2 flow"), Found("\"layer flow\""));
}

TEST_F(EvaluatorTest, ExplanationNotesEqualOperands) {
  Explanation explanation;
  Evaluator(engine_).Evaluate(*ParseQuery("lay* OR flow OR lay* OR flow"), &explanation);
  ASSERT_EQ(explanation.parts.size(), 2u);
  EXPECT_EQ(explanation.parts[0].note, "2 words, asked 2 times, counts once");
  EXPECT_EQ(explanation.parts[1].note, "asked 2 times, counts once");
}

TEST_F(EvaluatorTest, ACutIsNotedOnceForEqualParts) {
  AddManyWords();
  Evaluator evaluator(engine_);
  evaluator.Evaluate(*ParseQuery("p* NEAR/2 p* (p* OR flow)"), nullptr);
  EXPECT_EQ(evaluator.notes(), Words{"p* stands for only the 100 most frequent of 150 words"});
}

TEST_F(EvaluatorTest, MissingWordsBringSuggestions) {
  EXPECT_EQ(Suggested("flwo layer"), Words{"flow"});
  EXPECT_EQ(Suggested("flow layer"), Words{});
  EXPECT_EQ(Suggested("-flwo"), Words{});
  EXPECT_EQ(Suggested("flwo OR flwo"), Words{"flow"});
}

TEST_F(EvaluatorTest, WordsOfRemovedDocumentsAreMissing) {
  engine_.RemoveDocumentWords("one");
  EXPECT_EQ(Suggested("flow"), Words{"flows"});
}

}  // namespace
}  // namespace kestan::search
