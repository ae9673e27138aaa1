// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/query_tokens.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan::search {
namespace {

// Writes tokens as one letter for the kind, and the text of words and phrases.
std::string Cut(const std::string& text) {
  const std::string kinds = "wpAOkN()$";
  std::string drawn;
  for (const Token& token : TokensOf(text)) {
    const auto kind = static_cast<std::size_t>(token.kind);
    drawn += (drawn.empty() ? "" : " ") + kinds.substr(kind, 1);
    if (kind < 2) drawn += ":" + token.text;
  }
  return drawn;
}

TEST(QueryTokensTest, EveryTextEndsOnce) {
  EXPECT_EQ(Cut(""), "$");
  EXPECT_EQ(Cut(" \t\n"), "$");
}

TEST(QueryTokensTest, BlanksAndParenthesesPartWords) {
  EXPECT_EQ(Cut("a(b)c d"), "w:a ( w:b ) w:c w:d $");
}

TEST(QueryTokensTest, OperatorsBetweenPartsAreOperators) {
  EXPECT_EQ(Cut("a AND b OR NOT c NEAR/2 d"), "w:a A w:b O N w:c k w:d $");
}

TEST(QueryTokensTest, QuoteInsideAWordBelongsToIt) { EXPECT_EQ(Cut("a\"b c\""), "w:a\"b w:c\" $"); }

TEST(QueryTokensTest, MinusBindsWhatFollows) {
  EXPECT_EQ(Cut("-a -(b) -\"c d\""), "N w:a N ( w:b ) N p:c d $");
  EXPECT_EQ(Cut("-NOT"), "N w:NOT $");
}

TEST(QueryTokensTest, MinusGoesWithALostParenthesis) { EXPECT_EQ(Cut("-(a"), "w:a $"); }

TEST(QueryTokensTest, PartnersAreKnown) {
  const auto tokens = TokensOf("((a) b)");
  EXPECT_EQ(tokens[0].partner, 5u);
  EXPECT_EQ(tokens[1].partner, 3u);
}

TEST(QueryTokensTest, CurlyQuotesAreQuotes) {
  EXPECT_EQ(Cut("\xe2\x80\x9e"
                "a b\xe2\x80\x9c"),
            "p:a b $");
  EXPECT_EQ(Cut("a\xe2\x80"), "w:a\xe2\x80 $");
}

}  // namespace
}  // namespace kestan::search
