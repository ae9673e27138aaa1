// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/strict/strict_reading.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>
#include <vector>

#include "search/query/foreign_syntax.h"
#include "search/query/query_parser.h"
#include "search/query/word_notes.h"

namespace kestan::search {
namespace {

// Returns "COLUMN: MESSAGE", or "" for a text without a mistake.
std::string Mistake(const std::string& text, TextRules rules = TextRules::kAnalyzer) {
  const Status status = CheckIsStrict(text, rules);
  if (status.ok()) return "";
  EXPECT_EQ(status.code(), StatusCode::kInvalidQuery);
  return std::to_string(status.column().value_or(999)) + ": " + status.message();
}

std::string Repeated(const std::string& text, int times) {
  std::string repeated;
  for (int i = 0; i < times; ++i) repeated += text;
  return repeated;
}

TEST(StrictReadingTest, WhatTheLanguageHasIsNoMistake) {
  for (const char* const text :
       {"cat", "the cat", "cat dog", "-cat", "dog -(cat OR \"big dog\")", "NOT NOT cat",
        "a NEAR/1 b NEAR/20 c", "ca*", "cat~2", "e-mail", "C++", "don't", "(((cat)))", "42",
        "\"cat, or dog!\"", "pre-fix*", "\xe6\x9d\xb1*", "http://example.org/?q=1", "and or not"}) {
    EXPECT_EQ(Mistake(text), "") << text;
  }
}

TEST(StrictReadingTest, ParenthesisWithoutItsPartnerIsFound) {
  EXPECT_EQ(Mistake("cat (dog"), "4: the parenthesis has no partner");
  EXPECT_EQ(Mistake("cat dog)"), "7: the parenthesis has no partner");
  EXPECT_EQ(Mistake("((cat)"), "0: the parenthesis has no partner");
  EXPECT_EQ(Mistake("cat -(dog"), "5: the parenthesis has no partner");
}

TEST(StrictReadingTest, QuoteWithoutItsPartnerIsFound) {
  EXPECT_EQ(Mistake("cat \"big dog"), "4: the quote has no partner, or stands within a word");
  EXPECT_EQ(Mistake("cat \"big\" dog\""), "13: the quote has no partner, or stands within a word");
  EXPECT_EQ(Mistake("5\" disk"), "1: the quote has no partner, or stands within a word");
}

TEST(StrictReadingTest, OperatorThatLacksAnOperandIsFound) {
  EXPECT_EQ(Mistake("cat AND"), "4: AND lacks an operand");
  EXPECT_EQ(Mistake("OR cat"), "0: OR lacks an operand");
  EXPECT_EQ(Mistake("cat AND OR dog"), "4: AND lacks an operand");
  EXPECT_EQ(Mistake("cat NEAR/3"), "4: NEAR/3 lacks an operand");
  EXPECT_EQ(Mistake("cat NOT"), "4: NOT lacks an operand");
  EXPECT_EQ(Mistake("(cat OR) dog"), "5: OR lacks an operand");
}

TEST(StrictReadingTest, DistanceThatIsNoneIsFound) {
  for (const char* const near :
       {"NEAR", "NEAR/", "NEAR/0", "NEAR/-1", "NEAR/x", "NEAR/2147483648"}) {
    const std::string mistake = Mistake(std::string("cat ") + near + " dog");
    EXPECT_EQ(mistake.substr(0, 4 + std::string(near).size()), "4: '" + std::string(near))
        << mistake;
  }
  EXPECT_EQ(Mistake("cat NEAR/2147483647 dog"), "");
}

TEST(StrictReadingTest, PartWithoutLettersOrDigitsIsFound) {
  EXPECT_EQ(Mistake("cat - dog"), "4: '-' holds no letters or digits");
  EXPECT_EQ(Mistake("cat \"?\n!\""), "4: '? !' holds no letters or digits");
  EXPECT_EQ(Mistake("cat !"), "4: '!' holds no letters or digits");
  EXPECT_EQ(Mistake("cat \xe2\x82\xac"), "4: '\xe2\x82\xac' holds no letters or digits");
  EXPECT_EQ(Mistake("cat 42", TextRules::kAsciiLetters), "4: '42' holds no letters");
}

TEST(StrictReadingTest, TextWithoutAnyPartIsAMistakeAtItsStart) {
  EXPECT_EQ(Mistake(""), "0: the query holds no words");
  EXPECT_EQ(Mistake(" \t\n"), "0: the query holds no words");
  EXPECT_EQ(Mistake("()"), "0: the query holds no words");
  EXPECT_EQ(Mistake("cat ()"), "4: the parentheses hold nothing");
}

TEST(StrictReadingTest, NestingThatIsTooDeepIsFoundWhereItIs) {
  EXPECT_EQ(Mistake(Repeated("(", 200) + "cat" + Repeated(")", 200)), "");
  EXPECT_EQ(Mistake(Repeated("(", 201) + "cat" + Repeated(")", 201)),
            "200: parentheses and NOTs are nested deeper than 200");
  EXPECT_EQ(Mistake(Repeated("NOT ", 200) + "cat"), "");
  EXPECT_EQ(Mistake(Repeated("NOT ", 201) + "cat"),
            "800: parentheses and NOTs are nested deeper than 200");
  EXPECT_EQ(Mistake(Repeated("-(", 100) + "cat" + Repeated(")", 100)), "");
  EXPECT_EQ(Mistake(Repeated("-(", 100) + "-cat" + Repeated(")", 100)),
            "200: parentheses and NOTs are nested deeper than 200");
  EXPECT_EQ(Mistake(Repeated("(NOT cat) ", 300)), "");
}

TEST(StrictReadingTest, WordThatIsCutIsFound) {
  EXPECT_EQ(Mistake(std::string(64, 'x')), "");
  EXPECT_EQ(Mistake("cat " + std::string(65, 'x')),
            "4: '" + std::string(40, 'x') + "...' is too long: a word has up to 64 characters");
}

TEST(StrictReadingTest, OperatorsOfOtherToolsAreFound) {
  for (const char* const text : {"cat | dog", "cat && dog", "+cat", "!cat", "c*t", "c?t", "*cat"}) {
    EXPECT_NE(Mistake(text), "") << text;
  }
  EXPECT_EQ(Mistake("cat !dog"), "4: '!dog': ! is no operator; write NOT, or - before the word");
}

TEST(StrictReadingTest, SuffixThatDoesNotStandRightAfterAWordIsFound) {
  EXPECT_EQ(Mistake("cat.*"), "0: 'cat.*': * does not stand right after a word");
  EXPECT_EQ(Mistake("b2*", TextRules::kAsciiLetters),
            "0: 'b2*': * does not stand right after a word");
}

TEST(StrictReadingTest, FirstOfSeveralMistakesIsNamed) {
  EXPECT_EQ(Mistake("cat - (dog AND"), "4: '-' holds no letters or digits");
  EXPECT_EQ(Mistake("cat) - AND"), "3: the parenthesis has no partner");
}

TEST(StrictReadingTest, ColumnsCountTheBytesOfCurlyQuotes) {
  EXPECT_EQ(Mistake("\xe2\x80\x9c"
                    "big dog"
                    "\xe2\x80\x9d"
                    " AND"),
            "14: AND lacks an operand");
  EXPECT_EQ(Mistake("caf\xc3\xa9 \xe2\x80\x9c"
                    "big"),
            "6: the quote has no partner, or stands within a word");
}

RC_GTEST_PROP(StrictReadingPropertyTest, TextWithoutAMistakeIsReadWithoutNotes, ()) {
  const auto piece = rc::gen::oneOf(
      rc::gen::element<std::string>("cat", "Dog", "e-mail", "caf\xc3\xa9", "42", "the", "cat",
                                    "dog"),
      rc::gen::element<std::string>(" AND ", " OR ", " NOT ", " -", " NEAR/3 ", " NEAR/0 ", " ",
                                    " "),
      rc::gen::element<std::string>("(", ")", "\"", "*", "~1", "~", "|", "\xe2\x80\x9c", "?"));
  std::string text;
  for (const std::string& each : *rc::gen::container<std::vector<std::string>>(piece)) text += each;
  for (const TextRules rules : {TextRules::kAsciiLetters, TextRules::kAnalyzer}) {
    const Status status = CheckIsStrict(text, rules);
    RC_CLASSIFY(status.ok(), "without a mistake");
    if (status.ok()) {
      RC_ASSERT(NotesOnIgnoredText(text, rules).empty());
      RC_ASSERT(NotesOnForeignSyntax(text).empty());
      RC_ASSERT(ParseQuery(text, DefaultOperator::kAnd, QuotesMean::kPhrase, rules).has_value());
    } else {
      RC_ASSERT(status.code() == StatusCode::kInvalidQuery);
      RC_ASSERT(status.column().has_value() && *status.column() <= text.size());
      RC_ASSERT(!status.message().empty() && status.message().find('\n') == std::string::npos);
    }
  }
}

}  // namespace
}  // namespace kestan::search
