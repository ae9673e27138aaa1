// What must hold of every text that is taken for a query.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "search/query/evaluation/evaluator.h"
#include "search/query/query_parser.h"
#include "search/query/query_printer.h"
#include "search/ranking/listing/hits.h"
#include "tests/support/index_test.h"

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
  text.erase(std::remove(text.begin(), text.end(), '"'), text.end());
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

class QueryOfAnIndexTest : public kestan_tests::IndexTest {
 protected:
  // The names of the documents that `query` finds, in order of codes.
  std::string Found(const Query& query) {
    Evaluator evaluator(engine_);
    std::string names;
    for (const EngineHit& hit : HitsIn(evaluator.Evaluate(query, nullptr))) names += hit.name;
    return names;
  }
};

TEST_F(QueryOfAnIndexTest, AnyQueryAndItsOppositeFindAllDocuments) {
  engine_.AddDocumentWords("1", "cat Dog dog e mail");
  engine_.AddDocumentWords("2", "cafe its a of cat");
  engine_.AddDocumentWords("3", "AND NEAR x");
  const bool holds = rc::check([this] {
    const auto query = ParseQuery(*QueryText());
    RC_PRE(query.has_value());
    Query opposite;
    opposite.kind = Query::Kind::kNot;
    opposite.operands.push_back(*query);
    std::string all = Found(*query) + Found(opposite);
    std::sort(all.begin(), all.end());
    RC_ASSERT(all == "123");
  });
  EXPECT_TRUE(holds);
}

TEST_F(QueryOfAnIndexTest, QuestionsFindWhatAnyOfTheirWordsFinds) {
  engine_.AddDocumentWords("1", "cat dog");
  engine_.AddDocumentWords("2", "dogs mail");
  engine_.AddDocumentWords("3", "bird");
  const bool holds = rc::check([this] {
    const auto word = rc::gen::element<std::string>("cat", "dog", "mails", "birds", "fish", "the");
    const auto words = *rc::gen::nonEmpty(rc::gen::container<std::vector<std::string>>(word));
    std::string text;
    std::string expected;
    for (const std::string& each : words) text += each + " ";
    const auto has = [&](const char* part) { return text.find(part) != std::string::npos; };
    if (has("cat") || has("dog")) expected += "1";
    if (has("dog") || has("mails")) expected += "2";
    if (has("birds")) expected += "3";
    RC_ASSERT(Found(*ParseQuery(text, DefaultOperator::kOr)) == expected);
  });
  EXPECT_TRUE(holds);
}

// Combines all operands from left to right, each with what those before it have made.
ResultSet LeftToRight(Kestan& engine, const Query& query) {
  if (query.operands.empty()) return {engine, engine.QueryWord(query.word.c_str())};
  ResultSet so_far = LeftToRight(engine, query.operands.front());
  if (query.kind == Query::Kind::kNot) return {engine, engine.QueryNegate(so_far.id())};
  for (std::size_t i = 1; i < query.operands.size(); ++i) {
    const Query& operand = query.operands[i];
    const ResultSet next = LeftToRight(engine, operand);
    so_far = {engine, query.kind == Query::Kind::kOr
                          ? engine.QueryOr(so_far.id(), next.id())
                          : engine.QueryAnd(so_far.id(), next.id(), operand.distance_words)};
  }
  return so_far;
}

constexpr std::size_t kLetters = 12;

// A query for words of one letter, whose operators never have two operands alike.
Query QueryOfDifferentOperands(int depth) {
  Query query;
  const int kind = depth == 0 ? 0 : *rc::gen::inRange(0, 8);
  query.word = std::string(1, static_cast<char>('a' + *rc::gen::inRange<std::size_t>(0, kLetters)));
  if (kind < 2) return query;
  const Query::Kind kinds[] = {Query::Kind::kNot, Query::Kind::kNear, Query::Kind::kAnd};
  query.kind = kind < 5 ? kinds[kind - 2] : Query::Kind::kOr;
  query.word.clear();
  const std::size_t count =
      query.kind == Query::Kind::kNot ? 1 : *rc::gen::inRange<std::size_t>(2, 9);
  while (query.operands.size() < count) {
    Query operand = QueryOfDifferentOperands(depth - 1);
    const bool is_known =
        std::find(query.operands.begin(), query.operands.end(), operand) != query.operands.end();
    if (is_known) continue;
    if (query.kind == Query::Kind::kNear && !query.operands.empty()) {
      operand.distance_words = *rc::gen::inRange(1, 6);
    }
    query.operands.push_back(std::move(operand));
  }
  return query;
}

TEST_F(QueryOfAnIndexTest, DifferentOperandsCountAsFromLeftToRight) {
  for (unsigned document = 0; document < 12; ++document) {
    std::string text;
    for (unsigned i = 0; i < 40; ++i) {
      text += std::string(1, static_cast<char>('a' + (i * i + 7 * i * document + document) % 23 %
                                                         kLetters)) +
              " ";
    }
    engine_.AddDocumentWords(std::to_string(document).c_str(), text.c_str());
  }
  const bool holds = rc::check([this] {
    const Query query = QueryOfDifferentOperands(3);
    Evaluator evaluator(engine_);
    const std::string found = engine_.QueryResults(evaluator.Evaluate(query, nullptr).id());
    RC_ASSERT(found == engine_.QueryResults(LeftToRight(engine_, query).id()));
  });
  EXPECT_TRUE(holds);
}

}  // namespace
}  // namespace kestan::search
