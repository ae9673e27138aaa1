// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/query_pieces.h"

#include <gtest/gtest.h>

#include "cli/console/message.h"

namespace kestan_cli {
namespace {

using Kind = QueryPiece::Kind;

// The pieces of `query`, each with a bar after it.
std::string Cut(const std::string& query) {
  std::string pieces;
  for (const QueryPiece& piece : PiecesOf(query)) pieces += piece.text + "|";
  return pieces;
}

std::vector<Kind> KindsOf(const std::string& query) {
  std::vector<Kind> kinds;
  for (const QueryPiece& piece : PiecesOf(query)) kinds.push_back(piece.kind);
  return kinds;
}

QueryFilter OnlyFilter(const std::string& query) {
  const auto pieces = PiecesOf(query);
  EXPECT_EQ(pieces.size(), 1u) << query;
  EXPECT_EQ(pieces.at(0).kind, Kind::kFilter) << query;
  return pieces.at(0).filter;
}

TEST(PiecesOfTest, WhiteSpaceAndParenthesesEndWords) {
  EXPECT_EQ(Cut("  a\tb(c d)e "), "a|b|(|c|d|)|e|");
  EXPECT_EQ(Cut(""), "");
}

TEST(PiecesOfTest, OperatorsAreTold) {
  EXPECT_EQ(KindsOf("a AND b OR c NEAR/3 ( NOT d )"),
            (std::vector<Kind>{Kind::kText, Kind::kAnd, Kind::kText, Kind::kOr, Kind::kText,
                               Kind::kNear, Kind::kOpen, Kind::kNot, Kind::kText, Kind::kClose}));
  EXPECT_EQ(KindsOf("and NEAR NEAR/ NEAR/x"),
            (std::vector<Kind>{Kind::kText, Kind::kText, Kind::kText, Kind::kText}));
}

TEST(PiecesOfTest, PhrasesAndTheMinusOfAWordStayWithThem) {
  EXPECT_EQ(Cut("\"a b\" -c -\"d e\" - f --g"), "\"a b\"|-c|-\"d e\"|-|f|--g|");
}

TEST(PiecesOfTest, MinusBeforeAGroupIsNot) {
  EXPECT_EQ(Cut("-(a)"), "-|(|a|)|");
  EXPECT_EQ(KindsOf("-(a)").front(), Kind::kNot);
}

TEST(PiecesOfTest, EachKeyStartsAFilter) {
  EXPECT_EQ(OnlyFilter("path:a/b").key, FilterKey::kPath);
  EXPECT_EQ(OnlyFilter("type:pdf").key, FilterKey::kType);
  EXPECT_EQ(OnlyFilter("after:2024").key, FilterKey::kAfter);
  EXPECT_EQ(OnlyFilter("before:2024").key, FilterKey::kBefore);
  EXPECT_EQ(OnlyFilter("title:x").key, FilterKey::kTitle);
  EXPECT_EQ(OnlyFilter("from:a@b.c").key, FilterKey::kFrom);
  EXPECT_EQ(OnlyFilter("from:a@b.c").value, "a@b.c");
}

TEST(PiecesOfTest, OtherKeysAndCapitalsAreText) {
  for (const char* const query : {"foo:bar", "Type:pdf", "mytype:pdf", "type", "x(type"}) {
    for (const Kind kind : KindsOf(query)) EXPECT_NE(kind, Kind::kFilter) << query;
  }
}

TEST(PiecesOfTest, QuotesHoldAValueWithBlanks) {
  EXPECT_EQ(OnlyFilter("title:\"a b (c)\"").value, "a b (c)");
  EXPECT_EQ(OnlyFilter("title:\"a b\"").text, "title:\"a b\"");
  EXPECT_EQ(OnlyFilter("title:\xe2\x80\x9c"
                       "a b\xe2\x80\x9d")
                .value,
            "a b");
}

TEST(PiecesOfTest, ValueWithoutAClosingQuoteIsAWord) {
  EXPECT_EQ(Cut("title:\"a b"), "title:\"a|b|");
  EXPECT_EQ(PiecesOf("title:\"a b").front().filter.value, "a");
}

TEST(PiecesOfTest, FilterWithinQuotesIsText) {
  EXPECT_EQ(KindsOf("\"type:pdf\""), std::vector<Kind>{Kind::kText});
  EXPECT_EQ(KindsOf("\"see type: pdf\" -\"type:x\""),
            (std::vector<Kind>{Kind::kText, Kind::kText}));
}

TEST(PiecesOfTest, MinusExcludes) {
  EXPECT_TRUE(OnlyFilter("-type:pdf").excludes);
  EXPECT_FALSE(OnlyFilter("type:pdf").excludes);
  EXPECT_EQ(OnlyFilter("-type:pdf").text, "type:pdf");
}

TEST(PiecesOfTest, KeyWithoutAValueIsAnError) {
  for (const char* const query : {"type:", "a type: pdf", "type:\"\"", "type:\" \"", "(type:)"}) {
    try {
      PiecesOf(query);
      FAIL() << query;
    } catch (const CommandError& error) {
      EXPECT_STREQ(error.what(),
                   "type: needs a value right after it, as in type:pdf; in double quotes it is "
                   "text");
    }
  }
}

}  // namespace
}  // namespace kestan_cli
