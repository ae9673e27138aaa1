// SPDX-License-Identifier: GPL-3.0-or-later
// What must hold of every text that is taken for a query.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "search/matching/matcher.h"
#include "search/query/query_parser.h"
#include "search/query/query_printer.h"
#include "tests/search/matching/plain_segments.h"

namespace kestan::search {
namespace {

// Fragments that the language gives a meaning to, so that random texts meet its corners.
rc::Gen<std::string> QueryText() {
  const auto piece = rc::gen::oneOf(
      rc::gen::element<std::string>("cat", "Dog", "e-mail", "caf\xc3\xa9", "it's", "42", "a", "of"),
      rc::gen::element<std::string>(" AND ", " OR ", " NOT ", "NOT ", " NEAR/3 ", " NEAR/1 ",
                                    "NEAR/x", "AND"),
      rc::gen::element<std::string>("(", ")", "\"", "-", "*", "~1", "~", "~2", " ", "\xff", "'"),
      rc::gen::string<std::string>());
  return rc::gen::map(rc::gen::container<std::vector<std::string>>(piece),
                      [](const std::vector<std::string>& pieces) {
                        std::string text;
                        for (const std::string& each : pieces) text += each;
                        return text;
                      });
}

bool IsWord(const std::string& word) {
  const auto is_letter = [](char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
  };
  return !word.empty() && word.size() <= 64 && std::all_of(word.begin(), word.end(), is_letter);
}

// Whether a tree is one that the header promises.
bool IsValid(const Query& query) {
  const bool is_leaf = query.kind == Query::Kind::kWord || query.kind == Query::Kind::kPrefix ||
                       query.kind == Query::Kind::kFuzzy || query.kind == Query::Kind::kInflections;
  if (is_leaf) return query.operands.empty() && IsWord(query.word);
  const auto has_operands = [](const Query& operand) { return !operand.operands.empty(); };
  const bool is_phrase = query.kind == Query::Kind::kPhrase;
  if (is_phrase && std::any_of(query.operands.begin(), query.operands.end(), has_operands)) {
    return false;
  }
  const std::size_t count = query.operands.size();
  const bool count_is_right = query.kind == Query::Kind::kNot ? count == 1 : count >= 2;
  return count_is_right && std::all_of(query.operands.begin(), query.operands.end(), IsValid);
}

RC_GTEST_PROP(QueryPropertyTest, AnyTextIsAValidQueryOrNone, ()) {
  const std::string text = *QueryText();
  for (const auto default_operator : {DefaultOperator::kAnd, DefaultOperator::kOr}) {
    for (const auto quotes : {QuotesMean::kNear, QuotesMean::kPhrase}) {
      const auto query = ParseQuery(text, default_operator, quotes);
      if (query) RC_ASSERT(IsValid(*query));
    }
  }
}

RC_GTEST_PROP(QueryPropertyTest, WhatIsPrintedParsesTheSame, ()) {
  const std::string text = *QueryText();
  for (const auto quotes : {QuotesMean::kNear, QuotesMean::kPhrase}) {
    const auto query = ParseQuery(text, DefaultOperator::kAnd, quotes);
    RC_PRE(query.has_value());
    const auto again = ParseQuery(ToString(*query, quotes), DefaultOperator::kAnd, quotes);
    RC_ASSERT(again.has_value());
    RC_ASSERT(ToString(*again, quotes) == ToString(*query, quotes));
    RC_ASSERT(*again == *query);
  }
}

RC_GTEST_PROP(QueryPropertyTest, TextInQuotesIsWordsInARow, ()) {
  std::string text = *QueryText();
  // Quotes end the text, those of word processors too, which begin with this byte.
  const auto is_quote = [](char byte) { return byte == '"' || byte == '\xe2'; };
  text.erase(std::remove_if(text.begin(), text.end(), is_quote), text.end());
  const auto query = ParseQuery('"' + text + '"');
  if (!query || query->kind == Query::Kind::kWord) return;
  RC_ASSERT(query->kind == Query::Kind::kNear);
  for (std::size_t i = 0; i < query->operands.size(); ++i) {
    RC_ASSERT(query->operands[i].kind == Query::Kind::kWord);
    RC_ASSERT(query->operands[i].distance_words == (i == 0 ? 0 : 1));
  }
}

RC_GTEST_PROP(QueryPropertyTest, TextWithALowerCaseLetterIsAQuery, ()) {
  const std::string text = *QueryText();
  const auto is_lower = [](char byte) { return byte >= 'a' && byte <= 'z'; };
  if (std::any_of(text.begin(), text.end(), is_lower)) RC_ASSERT(ParseQuery(text).has_value());
}

TEST(QueryOfASegmentTest, AnyQueryAndItsOppositeFindAllDocuments) {
  kestan_tests::PlainSegments segments;
  const auto segment = segments.Add({kestan_tests::Plain("1", "cat Dog dog e mail"),
                                     kestan_tests::Plain("2", "cafe its a of cat"),
                                     kestan_tests::Plain("3", "AND NEAR x")});
  const bool holds = rc::check([&] {
    const auto query = ParseQuery(*QueryText(), DefaultOperator::kAnd, QuotesMean::kPhrase);
    RC_PRE(query.has_value());
    Query opposite;
    opposite.kind = Query::Kind::kNot;
    opposite.operands.push_back(*query);
    Matcher matcher(*segment);
    std::vector<Code> all = matcher.Find(*query, Need::kCodes)->codes;
    const Found others = matcher.Find(opposite, Need::kCodes);
    all.insert(all.end(), others->codes.begin(), others->codes.end());
    std::sort(all.begin(), all.end());
    RC_ASSERT(all == (std::vector<Code>{1, 2, 3}));
    RC_ASSERT(matcher.status().ok());
  });
  EXPECT_TRUE(holds);
}

}  // namespace
}  // namespace kestan::search
