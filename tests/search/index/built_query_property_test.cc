// SPDX-License-Identifier: GPL-3.0-or-later
// A built query finds what its text finds.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "search/index/question.h"
#include "search/query/strict/strict_reading.h"
#include "tests/search/matching/plain_segments.h"

namespace kestan::search {
namespace {

using kestan_tests::Plain;

enum class Kind { kLeaf, kNear, kAnd, kOr };

// A query in both ways. The text of an operator is in parentheses, but where it makes a chain.
struct Pair {
  SearchQuery built;
  Kind kind;
  std::string text;   // without the parentheses around it
  std::string group;  // with them

  // The text as an operand of `outer`.
  std::string In(Kind outer) const { return kind == outer ? text : group; }
};

Pair Leaf(const SearchQuery& built, const std::string& text) {
  return {built, Kind::kLeaf, text, text};
}

Pair Operator(const SearchQuery& built, Kind kind, const std::string& text) {
  return {built, kind, text, "(" + text + ")"};
}

Pair AnyLeaf() {
  const auto word = *rc::gen::element<std::string>("cat", "dogs", "dog", "e-mail", "the", "wing",
                                                   "don't", "Z\u00fcrich", "42", "cats");
  switch (*rc::gen::inRange(0, 4)) {
    case 0:
      return Leaf(SearchQuery::Prefix("ca"), "ca*");
    case 1:
      return Leaf(SearchQuery::Phrase(word + " cat"), "\"" + word + " cat\"");
    default:
      return Leaf(SearchQuery::Word(word), word);
  }
}

Pair AnyQuery(int depth);

Pair AnyList(int depth, Kind kind) {
  std::vector<SearchQuery> operands;
  std::string text;
  const int count = *rc::gen::inRange(1, 4);
  for (int i = 0; i < count; ++i) {
    const Pair operand = AnyQuery(depth - 1);
    operands.push_back(operand.built);
    text += (i == 0 ? "" : kind == Kind::kAnd ? " AND " : " OR ") + operand.In(kind);
  }
  return Operator(kind == Kind::kAnd ? SearchQuery::And(operands) : SearchQuery::Or(operands), kind,
                  text);
}

Pair AnyNear(int depth) {
  const Pair left = AnyQuery(depth - 1);
  const Pair right = AnyQuery(depth - 1);
  const auto distance = *rc::gen::inRange(1U, 6U);
  return Operator(SearchQuery::Near(left.built, right.built, distance), Kind::kNear,
                  left.In(Kind::kNear) + " NEAR/" + std::to_string(distance) + " " + right.group);
}

Pair AnyQuery(int depth) {
  if (depth == 0) return AnyLeaf();
  switch (*rc::gen::inRange(0, 6)) {
    case 0:
      return AnyList(depth, Kind::kAnd);
    case 1:
      return AnyList(depth, Kind::kOr);
    case 2:
      return AnyNear(depth);
    case 3: {
      const Pair operand = AnyQuery(depth - 1);
      return Leaf(SearchQuery::Not(operand.built), "(NOT " + operand.group + ")");
    }
    default:
      return AnyLeaf();
  }
}

class BuiltQueryPropertyTest : public testing::Test {
 protected:
  BuiltQueryPropertyTest() {
    segments_.Add({Plain("1", "the cat and the dog sat"), Plain("2", "dogs e mail cats cat"),
                   Plain("3", "wing of a cat"), Plain("4", "don t wing 42 zurich cat")});
    segments_.Add({Plain("5", "cat cat cat dog"), Plain("6", "mail e the wing"),
                   Plain("7", "the the cat camel e mail")});
  }

  // Checks that both ways find the same documents with the same scores in the same order. With
  // `but_for_some`, texts that fall back on documents with some of the words are left out.
  void CheckSame(const Pair& pair, WordsMean words, bool but_for_some) {
    for (const TextRules rules : {TextRules::kAsciiLetters, TextRules::kAnalyzer}) {
      Snapshot snapshot = segments_.snapshot();
      snapshot.rules = rules;
      CheckSameIn(snapshot, pair, words, but_for_some);
    }
  }

 private:
  static void CheckSameIn(const Snapshot& snapshot, const Pair& pair, WordsMean words,
                          bool but_for_some) {
    SearchOptions options;
    options.words = words;
    options.limit = 0;
    const auto of_text = Ask(pair.text, snapshot, options);
    const auto of_built = Ask(pair.built, snapshot, options);
    RC_ASSERT(of_text.ok());
    if (of_built.status().code() == StatusCode::kInvalidQuery) {  // 42 has no letters
      RC_ASSERT(snapshot.rules == TextRules::kAsciiLetters);
      RC_ASSERT(pair.text.find("42") != std::string::npos);
      return;
    }
    RC_ASSERT(of_built.ok());
    RC_ASSERT(CheckIsStrict(pair.text, snapshot.rules).ok());
    if (but_for_some && of_built->found.total == 0) return;
    RC_LOG(pair.text);
    const auto& expected = of_text->found.best;
    const auto& found = of_built->found.best;
    RC_ASSERT(of_built->found.total == of_text->found.total);
    RC_ASSERT(found.size() == expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
      RC_ASSERT(found[i].id.segment == expected[i].id.segment);
      RC_ASSERT(found[i].id.code == expected[i].id.code);
      RC_ASSERT(found[i].score == expected[i].score);
    }
    RC_ASSERT(of_built->found.terms == of_text->found.terms);
    RC_ASSERT(of_built->notes == of_text->notes);
    RC_ASSERT(*CountAnswers(pair.built, snapshot, options) == found.size());
  }

  kestan_tests::PlainSegments segments_;
};

TEST_F(BuiltQueryPropertyTest, TextTakenAsItIsWrittenFindsTheSame) {
  EXPECT_TRUE(rc::check([this] { CheckSame(AnyQuery(4), WordsMean::kAll, false); }));
}

TEST_F(BuiltQueryPropertyTest, TextWithFormsFindsTheSameWhereSomethingHasAll) {
  EXPECT_TRUE(rc::check([this] { CheckSame(AnyQuery(4), WordsMean::kBest, true); }));
}

}  // namespace
}  // namespace kestan::search
