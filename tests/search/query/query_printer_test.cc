#include "search/query/query_printer.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan::search {
namespace {

std::string Respelled(const std::string& text, SideBySide side_by_side = SideBySide::kAll) {
  return Spelled(*ParseQuery(text, side_by_side));
}

std::string Label(const std::string& text) { return LabelOf(*ParseQuery(text)); }

TEST(SpellingTest, OperatorsAreWrittenOut) {
  EXPECT_EQ(Respelled("a b -c"), "a AND b AND NOT c");
  EXPECT_EQ(Respelled("a OR b c"), "a OR b AND c");
}

TEST(SpellingTest, ParenthesesStandWhereTheyAreNeeded) {
  EXPECT_EQ(Respelled("a (b OR c)"), "a AND (b OR c)");
  EXPECT_EQ(Respelled("(a b) OR (c)"), "a AND b OR c");
  EXPECT_EQ(Respelled("a (b c)"), "a AND (b AND c)");
  EXPECT_EQ(Respelled("(a NEAR/2 b) NEAR/3 (c d)"), "(a NEAR/2 b) NEAR/3 (c AND d)");
  EXPECT_EQ(Respelled("-(a b) -(-c)"), "NOT (a AND b) AND NOT NOT c");
}

TEST(SpellingTest, WordsInARowStandInQuotes) {
  EXPECT_EQ(Respelled("e-mail NEAR/4 x"), "\"e mail\" NEAR/4 x");
  EXPECT_EQ(Respelled("a NEAR/1 b"), "\"a b\"");
  EXPECT_EQ(Respelled("a NEAR/1 b*"), "a NEAR/1 b*");
}

TEST(SpellingTest, WordsThatLookLikeOperatorsStandInQuotes) {
  EXPECT_EQ(Respelled("a AND"), "a AND \"AND\"");
  EXPECT_EQ(Respelled("a NEAR"), "a AND NEAR");
}

TEST(SpellingTest, ExpansionsKeepTheirMarks) {
  EXPECT_EQ(Respelled("a* b~ c~2"), "a* AND b~1 AND c~2");
}

TEST(SpellingTest, FormsAreSpelledAsTheirWord) {
  EXPECT_EQ(Respelled("wing flow", SideBySide::kAny), "wing OR flow");
}

TEST(SpellingTest, LabelsNameOneNode) {
  EXPECT_EQ(Label("a b"), "AND");
  EXPECT_EQ(Label("a OR b"), "OR");
  EXPECT_EQ(Label("-a"), "NOT");
  EXPECT_EQ(Label("a NEAR/3 b NEAR/3 c"), "NEAR/3");
  EXPECT_EQ(Label("a NEAR/3 b NEAR/2 c"), "NEAR");
  EXPECT_EQ(Label("a*"), "a*");
  EXPECT_EQ(LabelOf(*ParseQuery("wing", SideBySide::kAny)), "wing and its forms");
}

}  // namespace
}  // namespace kestan::search
