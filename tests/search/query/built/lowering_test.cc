// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/built/lowering.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "search/query/built/built_node.h"
#include "search/query/query_printer.h"

namespace kestan::search {
namespace {

using Built = SearchQuery;

Built Cat() { return Built::Word("cat"); }
Built Dog() { return Built::Word("dog"); }

std::string Printed(const Built& query, DefaultOperator words = DefaultOperator::kAnd,
                    TextRules rules = TextRules::kAnalyzer) {
  const auto lowered = Lowered(query, words, rules);
  return lowered.ok() ? ToString(*lowered, QuotesMean::kPhrase)
                      : "error: " + lowered.status().message();
}

StatusCode CodeOf(const Built& query) {
  return Lowered(query, DefaultOperator::kAnd, TextRules::kAnalyzer).status().code();
}

// Puts `count` operators around a word, by turns AND and OR, which cannot be joined.
Built Nested(unsigned count) {
  Built query = Cat();
  for (unsigned i = 0; i < count; ++i) {
    query = i % 2 == 0 ? Built::And({query, Dog()}) : Built::Or({query, Dog()});
  }
  return query;
}

TEST(LoweringTest, EachCallIsItsOperator) {
  EXPECT_EQ(Printed(Built::Word("roses")), "roses");
  EXPECT_EQ(Printed(Built::Prefix("ros")), "ros*");
  EXPECT_EQ(Printed(Built::Phrase("dead end")), "\"dead end\"");
  EXPECT_EQ(Printed(Built::Near(Cat(), Dog(), 3)), "cat NEAR/3 dog");
  EXPECT_EQ(Printed(Built::And({Cat(), Dog()})), "cat AND dog");
  EXPECT_EQ(Printed(Built::Or({Cat(), Dog()})), "cat OR dog");
  EXPECT_EQ(Printed(Built::Not(Cat())), "NOT cat");
}

TEST(LoweringTest, WhatLooksLikeAnOperatorIsAWord) {
  EXPECT_EQ(Printed(Built::Word("OR")), "or");
  EXPECT_EQ(Printed(Built::Word("roses*")), "roses");
  EXPECT_EQ(Printed(Built::Word("roses~2")), Printed(Built::Phrase("roses 2")));
  EXPECT_EQ(Printed(Built::Word("-roses")), "roses");
  EXPECT_EQ(Printed(Built::Word("\"dead")), "dead");
}

TEST(LoweringTest, WordsThatHangTogetherStandInARow) {
  EXPECT_EQ(Printed(Built::Word("e-mail")), "\"e mail\"");
  EXPECT_EQ(Printed(Built::Prefix("pre-fix")), "pre-fix*");
}

TEST(LoweringTest, WordsApartInAWordAreAllRequiredUnlessAnyIsEnough) {
  EXPECT_EQ(Printed(Built::Word("the cat")), "the AND cat");
  EXPECT_EQ(Printed(Built::Word("the\tcat"), DefaultOperator::kAndOfQuestion), "the AND cat");
  EXPECT_EQ(Printed(Built::Word("the cat"), DefaultOperator::kOr), "the OR cat");
  EXPECT_EQ(Printed(Built::Prefix(" the ca ")), "the AND ca*");
}

TEST(LoweringTest, WordsOutsideQuotesAskForTheirFormsUnlessTakenAsTheyAreWritten) {
  const auto kind_of = [](const Built& query, DefaultOperator words) {
    return Lowered(query, words, TextRules::kAnalyzer)->kind;
  };
  using Kind = Query::Kind;
  EXPECT_EQ(kind_of(Cat(), DefaultOperator::kAnd), Kind::kWord);
  EXPECT_EQ(kind_of(Cat(), DefaultOperator::kAndOfQuestion), Kind::kInflections);
  EXPECT_EQ(kind_of(Cat(), DefaultOperator::kOr), Kind::kInflections);
  EXPECT_EQ(kind_of(Built::Phrase("cat"), DefaultOperator::kOr), Kind::kWord);
  EXPECT_EQ(kind_of(Built::Word("the"), DefaultOperator::kOr), Kind::kWord);
}

TEST(LoweringTest, IndexOfLettersReadsLetters) {
  EXPECT_EQ(Printed(Built::Word("don't"), DefaultOperator::kAnd, TextRules::kAsciiLetters), "dont");
  EXPECT_EQ(Printed(Built::Word("42"), DefaultOperator::kAnd, TextRules::kAsciiLetters),
            "error: the word '42' holds no letters");
  EXPECT_EQ(Printed(Built::Prefix("b2"), DefaultOperator::kAnd, TextRules::kAsciiLetters),
            "error: the prefix 'b2' does not end in a word");
}

TEST(LoweringTest, ChainsOfOneOperatorAreOneNode) {
  const Built three = Built::And({Built::And({Cat(), Dog()}), Built::And({Built::Word("x")})});
  EXPECT_EQ(Printed(three), "cat AND dog AND x");
  const Built near = Built::Near(Built::Near(Cat(), Dog(), 2), Built::Word("x"), 5);
  EXPECT_EQ(Printed(near), "cat NEAR/2 dog NEAR/5 x");
  EXPECT_EQ(Printed(Built::Near(Cat(), Built::Near(Dog(), Cat(), 1), 4)),
            "cat NEAR/4 (dog NEAR/1 cat)");
}

TEST(LoweringTest, OneOperandIsTheQueryItself) {
  EXPECT_EQ(Printed(Built::And({Cat()})), "cat");
  EXPECT_EQ(Printed(Built::Or({Built::Not(Cat())})), "NOT cat");
}

TEST(LoweringTest, TextWithoutWordsIsAnError) {
  EXPECT_EQ(Printed(Built::Word("")), "error: the word '' holds no letters or digits");
  EXPECT_EQ(Printed(Built::Prefix("*")), "error: the prefix '*' holds no letters or digits");
  EXPECT_EQ(Printed(Built::Phrase("?\n!")), "error: the phrase '? !' holds no letters or digits");
  EXPECT_EQ(CodeOf(Built::And({Cat(), Built::Not(Built::Word("-"))})), StatusCode::kInvalidQuery);
  const std::string long_text(1000, '-');
  EXPECT_EQ(Printed(Built::Word(long_text)),
            "error: the word '" + std::string(40, '-') + "...' holds no letters or digits");
}

TEST(LoweringTest, PrefixThatDoesNotEndInAWordIsAnError) {
  EXPECT_EQ(Printed(Built::Prefix("roses.")), "error: the prefix 'roses.' does not end in a word");
  EXPECT_EQ(Printed(Built::Prefix("x .")), "error: the prefix 'x .' does not end in a word");
}

TEST(LoweringTest, DistanceIsOneToTheLargestInt) {
  EXPECT_EQ(CodeOf(Built::Near(Cat(), Dog(), 0)), StatusCode::kInvalidQuery);
  EXPECT_EQ(CodeOf(Built::Near(Cat(), Dog(), 1)), StatusCode::kOk);
  EXPECT_EQ(CodeOf(Built::Near(Cat(), Dog(), INT_MAX)), StatusCode::kOk);
  EXPECT_EQ(CodeOf(Built::Near(Cat(), Dog(), unsigned{INT_MAX} + 1)), StatusCode::kInvalidQuery);
  EXPECT_EQ(Printed(Built::Near(Built::Near(Cat(), Dog(), 0), Dog(), 1)),
            "error: the distance of NEAR must be 1 to 2147483647, not 0");
}

TEST(LoweringTest, OperatorWithoutOperandsIsAnError) {
  EXPECT_EQ(Printed(Built::And({})), "error: AND has no operands");
  EXPECT_EQ(Printed(Built::Or({Cat(), Built::Or({})})), "error: OR has no operands");
}

TEST(LoweringTest, QueryThatThereWasNoMemoryForIsAnErrorAsAPartToo) {
  EXPECT_EQ(CodeOf(BuiltNode::NotBuilt()), StatusCode::kOutOfMemory);
  EXPECT_EQ(CodeOf(Built::Or({Cat(), BuiltNode::NotBuilt()})), StatusCode::kOutOfMemory);
  EXPECT_EQ(CodeOf(Built::Near(BuiltNode::NotBuilt(), Cat(), 1)), StatusCode::kOutOfMemory);
  EXPECT_EQ(CodeOf(Built::Not(BuiltNode::NotBuilt())), StatusCode::kOutOfMemory);
}

TEST(LoweringTest, TwoHundredOperatorsMayBeNestedAndNoMore) {
  EXPECT_EQ(CodeOf(Nested(kMaxQueryDepth)), StatusCode::kOk);
  EXPECT_EQ(Printed(Nested(kMaxQueryDepth + 1)),
            "error: the query is nested deeper than 200 operators");
  EXPECT_EQ(CodeOf(Nested(100'000)), StatusCode::kInvalidQuery);
}

TEST(LoweringTest, ChainOfAnyLengthCountsAsOneOperator) {
  Built left = Cat();
  Built right = Cat();
  Built near = Cat();
  for (int i = 0; i < 100'000; ++i) {
    left = Built::And({left, Dog()});
    right = Built::Or({Dog(), right});
    near = Built::Near(near, Dog(), 1);
  }
  for (const Built& chain : {left, right, near}) {
    const auto lowered = Lowered(chain, DefaultOperator::kAnd, TextRules::kAnalyzer);
    ASSERT_TRUE(lowered.ok()) << lowered.status().ToString();
    EXPECT_EQ(lowered->operands.size(), 100'001U);
  }
}

TEST(LoweringTest, SharedPartsThatMakeTooLargeAQueryAreAnError) {
  const std::string error = "error: the query has more than 1000000 parts";
  Built joined = Cat();
  Built nested = Cat();
  for (int i = 0; i < 80; ++i) {
    joined = Built::And({joined, joined});
    nested = Built::Not(Built::And({nested, nested}));
  }
  EXPECT_EQ(Printed(joined), error);
  EXPECT_EQ(Printed(nested), error);
  std::string words;
  for (int i = 0; i < 1000; ++i) words += "x ";
  EXPECT_EQ(CodeOf(Built::Or(std::vector<Built>(500, Built::Phrase(words)))), StatusCode::kOk);
  EXPECT_EQ(Printed(Built::Or(std::vector<Built>(1500, Built::Phrase(words)))), error);
}

}  // namespace
}  // namespace kestan::search
