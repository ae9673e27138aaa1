// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/query_printer.h"

#include <gtest/gtest.h>

#include <string>

#include "search/query/query_parser.h"

namespace kestan::search {
namespace {

std::string Printed(const std::string& text,
                    DefaultOperator default_operator = DefaultOperator::kAnd) {
  return ToString(*ParseQuery(text, default_operator));
}

std::string Label(const std::string& text) { return LabelOf(*ParseQuery(text)); }

TEST(QueryPrinterTest, OperatorsAreWrittenOut) {
  EXPECT_EQ(Printed("a b -c"), "a AND b AND NOT c");
  EXPECT_EQ(Printed("a OR b c"), "a OR b AND c");
}

TEST(QueryPrinterTest, ParenthesesStandWhereTheyAreNeeded) {
  EXPECT_EQ(Printed("a (b OR c)"), "a AND (b OR c)");
  EXPECT_EQ(Printed("(a b) OR (c)"), "a AND b OR c");
  EXPECT_EQ(Printed("a (b c)"), "a AND (b AND c)");
  EXPECT_EQ(Printed("(a NEAR/2 b) NEAR/3 (c d)"), "(a NEAR/2 b) NEAR/3 (c AND d)");
  EXPECT_EQ(Printed("-(a b) -(-c)"), "NOT (a AND b) AND NOT NOT c");
}

TEST(QueryPrinterTest, WordsInARowStandInQuotes) {
  EXPECT_EQ(Printed("e-mail NEAR/4 x"), "\"e mail\" NEAR/4 x");
  EXPECT_EQ(Printed("a NEAR/1 b"), "\"a b\"");
  EXPECT_EQ(Printed("a NEAR/1 b*"), "a NEAR/1 b*");
}

TEST(QueryPrinterTest, WordsThatLookLikeOperatorsStandInQuotes) {
  EXPECT_EQ(Printed("a AND"), "a AND \"AND\"");
  EXPECT_EQ(Printed("a NEAR"), "a AND NEAR");
}

TEST(QueryPrinterTest, ExpansionsKeepTheirMarks) {
  EXPECT_EQ(Printed("a* b~ c~2"), "a* AND b~1 AND c~2");
}

TEST(QueryPrinterTest, InflectionsArePrintedAsTheirWord) {
  EXPECT_EQ(Printed("wing flow", DefaultOperator::kOr), "wing OR flow");
}

std::string InOrder(const std::string& text) {
  return ToString(*ParseQuery(text, DefaultOperator::kAnd, QuotesMean::kPhrase),
                  QuotesMean::kPhrase);
}

TEST(QueryPrinterTest, PhrasesStandInQuotes) {
  EXPECT_EQ(InOrder("e-mail NEAR/4 x"), "\"e mail\" NEAR/4 x");
  EXPECT_EQ(InOrder("-\"a AND\""), "NOT \"a AND\"");
}

TEST(QueryPrinterTest, PhrasesThatStandForOthersAreJoined) {
  EXPECT_EQ(InOrder("e-mail* e-mail~"), "e-mail* AND e-mail~1");
}

TEST(QueryPrinterTest, NearIsNoPhraseWhereQuotesKeepTheOrder) {
  EXPECT_EQ(InOrder("a NEAR/1 b"), "a NEAR/1 b");
}

TEST(QueryPrinterTest, LabelsNameOneNode) {
  EXPECT_EQ(Label("a b"), "AND");
  EXPECT_EQ(Label("a OR b"), "OR");
  EXPECT_EQ(Label("-a"), "NOT");
  EXPECT_EQ(Label("a NEAR/3 b NEAR/3 c"), "NEAR/3");
  EXPECT_EQ(Label("a NEAR/3 b NEAR/2 c"), "NEAR");
  EXPECT_EQ(Label("a*"), "a*");
  EXPECT_EQ(LabelOf(*ParseQuery("a-b", DefaultOperator::kAnd, QuotesMean::kPhrase)), "\"a b\"");
  EXPECT_EQ(LabelOf(*ParseQuery("wing", DefaultOperator::kOr)), "wing and its forms");
}

}  // namespace
}  // namespace kestan::search
