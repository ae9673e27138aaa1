// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/optional_words.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace kestan::search {
namespace {

using Kind = Query::Kind;
using Words = std::vector<std::string>;

Query Word(const std::string& text) {
  Query query;
  query.word = text;
  return query;
}

Query Of(Kind kind, const Words& words) {
  Query query;
  query.kind = kind;
  for (const std::string& word : words) query.operands.push_back(Word(word));
  return query;
}

// The words that are left, with a ? after those that are optional and a - before those under NOT.
std::string Left(std::vector<Query> words, const Words& common, OptionalWords* optional) {
  const auto is_common = [&](const std::string& word) {
    return std::find(common.begin(), common.end(), word) != common.end();
  };
  std::string text;
  for (const Query& query : WithOptionalWords(std::move(words), IsStop, is_common, optional)) {
    if (query.kind == Kind::kNot) text += "-";
    text += query.operands.empty() ? query.word : query.operands.front().word;
    text += query.kind == Kind::kOptional ? "? " : " ";
  }
  return text;
}

std::string Left(const Words& words, const Words& common = {}) {
  std::vector<Query> queries;
  for (const std::string& word : words) queries.push_back(Word(word));
  OptionalWords optional;
  return Left(queries, common, &optional);
}

TEST(OptionalWordsTest, StopWordsAreDroppedAndCommonWordsStay) {
  EXPECT_EQ(Left({"the", "linux", "drive"}, {"linux"}), "linux? drive ");
}

TEST(OptionalWordsTest, AStopWordThatIsCommonIsDropped) {
  EXPECT_EQ(Left({"the", "linux", "drive"}, {"the"}), "linux drive ");
}

TEST(OptionalWordsTest, StopWordsAloneStay) { EXPECT_EQ(Left({"to", "be"}), "to be "); }

TEST(OptionalWordsTest, CommonWordsAloneAreRequired) {
  EXPECT_EQ(Left({"linux", "drive"}, {"linux", "drive"}), "linux drive ");
  EXPECT_EQ(Left({"the", "linux"}, {"linux"}), "linux ");
}

TEST(OptionalWordsTest, WhatIsExcludedIsNothingToFind) {
  OptionalWords optional;
  EXPECT_EQ(Left({Word("linux"), Of(Kind::kNot, {"drive"})}, {"linux"}, &optional),
            "linux -drive ");
  EXPECT_EQ(Left({Word("the"), Of(Kind::kNot, {"drive"})}, {}, &optional), "the -drive ");
  EXPECT_EQ(optional.stop_words, Words());
  EXPECT_EQ(optional.common, Words());
}

TEST(OptionalWordsTest, PhrasesArePartsThatAreRequired) {
  OptionalWords optional;
  EXPECT_EQ(Left({Word("linux"), Of(Kind::kPhrase, {"linux", "drive"})}, {"linux"}, &optional),
            "linux? linux ");
}

TEST(OptionalWordsTest, WordsAreNamedOnceAsTheyAreWritten) {
  OptionalWords optional;
  const std::vector<Query> words = {Word("the"),   Of(Kind::kPhrase, {"don", "t"}),
                                    Word("linux"), Word("drive"),
                                    Word("the"),   Word("linux")};
  EXPECT_EQ(Left(words, {"linux"}, &optional), "linux? drive linux? ");
  EXPECT_EQ(optional.stop_words, (Words{"the", "don't"}));
  EXPECT_EQ(optional.common, Words{"linux"});
}

}  // namespace
}  // namespace kestan::search
