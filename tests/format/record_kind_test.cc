// SPDX-License-Identifier: GPL-3.0-or-later
// What a record is, by its key and its value.
#include <kestan/format/record_kind.h>

#include <string>

#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using namespace std::string_literals;
using kestan::RecordKind;

constexpr kestan::PostingRules kRules{true, 3};
constexpr kestan::PostingRules kRulesWithoutPositions{false, 3};

RecordKind KindOf(const std::string& key, const std::string& value) {
  const DBDatum datum = Datum(value);
  return kestan::KindOf(Datum(key), &datum, kRules);
}

bool IsPostings(const std::string& value, const kestan::PostingRules& rules = kRules) {
  return kestan::LooksLikePostings(Datum(value), rules);
}

TEST(RecordKindTest, KeysOfThreeBytesDecideAlone) {
  EXPECT_EQ(KindOf("g-code", ""), RecordKind::kCounter);
  EXPECT_EQ(KindOf("g-avail", ""), RecordKind::kReusableCodes);
  EXPECT_EQ(KindOf("g-deleted", ""), RecordKind::kRemovedCodes);
  EXPECT_EQ(KindOf("g-opts", ""), RecordKind::kOptions);
  EXPECT_EQ(KindOf("d-a", ""), RecordKind::kDocument);
  EXPECT_EQ(KindOf("c-\0\1"s, ""), RecordKind::kName);
  EXPECT_EQ(KindOf("t-a", ""), RecordKind::kTitle);
  EXPECT_EQ(KindOf("s-a", ""), RecordKind::kSummary);
  EXPECT_EQ(KindOf("u-a", ""), RecordKind::kUser);
  EXPECT_EQ(KindOf("w-a", ""), RecordKind::kWordList);
  EXPECT_EQ(KindOf("g-codes", ""), RecordKind::kOther);
  EXPECT_EQ(KindOf("D-a", ""), RecordKind::kOther);
}

TEST(RecordKindTest, WhatHasNoHyphenInSecondPlaceIsAWord) {
  for (const char* word : {"", "-", "a", "ab", "cat", "-a", "ab-c"}) {
    EXPECT_EQ(KindOf(word, ""), RecordKind::kPosting) << word;
  }
}

TEST(RecordKindTest, ValuesDecideForKeysOfTwoBytes) {
  EXPECT_EQ(KindOf("d-", Units({9, 9, 1, 0})), RecordKind::kDocument);
  EXPECT_EQ(KindOf("d-", Units({1, 2, 1, 2})), RecordKind::kPosting);
  EXPECT_EQ(KindOf("d-", Units({1, 1, 1})), RecordKind::kPosting);
  EXPECT_EQ(KindOf("t-", "Title"), RecordKind::kTitle);
  EXPECT_EQ(KindOf("s-", ""), RecordKind::kSummary);
  EXPECT_EQ(KindOf("u-", Units({1, 1, 1})), RecordKind::kPosting);
  EXPECT_EQ(KindOf("w-", "\x80red"), RecordKind::kWordList);
  EXPECT_EQ(KindOf("c-", "a"), RecordKind::kPosting);
  EXPECT_EQ(KindOf("x-", "a"), RecordKind::kPosting);
  EXPECT_EQ(kestan::KindOf(Datum("t-"), nullptr, kRules), RecordKind::kPosting);
}

TEST(RecordKindTest, TheKeyDecidesForAValueThatIsNotRead) {
  EXPECT_EQ(kestan::KindOf(Datum("d-day"), nullptr, kRules), RecordKind::kDocument);
  EXPECT_EQ(kestan::KindOf(Datum("x-ray"), nullptr, kRules), RecordKind::kOther);
}

TEST(RecordKindTest, ListsThatCouldBeCodesAreListsWhereTheyBeginWithAWord) {
  const kestan::PostingRules rules{false, 0xffff};
  const DBDatum list("\x80red", 4);
  const DBDatum codes("reds", 4);
  EXPECT_EQ(kestan::KindOf(Datum("w-list"), &list, rules), RecordKind::kWordList);
  EXPECT_EQ(kestan::KindOf(Datum("w-list"), &codes, rules), RecordKind::kPosting);
}

TEST(RecordKindTest, WhatBeginsWithCodeZeroIsNoDamagedWord) {
  EXPECT_EQ(KindOf("x-ray", Units({1, 1, 4, 9})), RecordKind::kPosting);
  EXPECT_EQ(KindOf("x-ray", Units({0, 1, 4, 9})), RecordKind::kOther);
}

TEST(RecordKindTest, ValuesDecideForWordsWithHyphens) {
  const std::string postings = Units({1, 1, 1, 9, 2, 2, 3});
  for (const char* word :
       {"d-day", "c-section", "c-ab", "t-shirt", "s-bahn", "u-turn", "w-2", "e-mail", "g-force"}) {
    EXPECT_EQ(KindOf(word, postings), RecordKind::kPosting) << word;
  }
  EXPECT_EQ(KindOf("g-code", postings), RecordKind::kCounter);
  EXPECT_EQ(KindOf("d-day", Units({1, 1, 1, 0})), RecordKind::kDocument);
  EXPECT_EQ(KindOf("d-day", postings + "x"), RecordKind::kDocument);
  EXPECT_EQ(KindOf("t-shirt", "Shirts"), RecordKind::kTitle);
  EXPECT_EQ(KindOf("w-2", "\x80red"), RecordKind::kWordList);
}

TEST(RecordKindTest, KeysThatNoTextHasAreNotThoseOfWords) {
  const std::string postings = Units({1, 1, 1});
  EXPECT_EQ(KindOf("d-a day", postings), RecordKind::kDocument);
  EXPECT_EQ(KindOf("c-\1\0"s, postings), RecordKind::kName);
  EXPECT_EQ(KindOf("t-\n", postings), RecordKind::kTitle);
}

TEST(RecordKindTest, CodesAloneAreNoTextWhereTheyHoldNuls) {
  const auto kind_of = [](const std::string& key, const std::string& value) {
    const DBDatum datum = Datum(value);
    return kestan::KindOf(Datum(key), &datum, {false, 0x6262});
  };
  for (const char* word : {"d-day", "c-section", "c-ab", "t-shirt", "w-2", "e-mail"}) {
    EXPECT_EQ(kind_of(word, Units({1, 2, 3, 4})), RecordKind::kPosting) << word;
  }
  EXPECT_EQ(kind_of("d-day", Units({0x6161, 0x6161, 1, 0})), RecordKind::kDocument);
  EXPECT_EQ(kind_of("t-shirt", "ab"), RecordKind::kTitle);
  EXPECT_EQ(kind_of("c-ab", "ab"), RecordKind::kName);
  EXPECT_EQ(kind_of("c-cc", "ab"), RecordKind::kPosting);  // no document has that code
}

// Option flag 1 leaves the positions in the records of such words.
TEST(RecordKindTest, PositionsBeforeCodesAloneAreMixedPostings) {
  EXPECT_TRUE(kestan::LooksLikeMixedPostings(Datum(Units({1, 2, 5, 9}))));
  EXPECT_TRUE(kestan::LooksLikeMixedPostings(Datum(Units({1, 1, 5, 2, 3}))));
  EXPECT_FALSE(kestan::LooksLikeMixedPostings(Datum(Units({1, 3, 5, 9}))));
  EXPECT_FALSE(kestan::LooksLikeMixedPostings(Datum(Units({1, 1, 0}))));
  EXPECT_FALSE(kestan::LooksLikeMixedPostings(Datum(Units({1, 1}))));
  EXPECT_FALSE(kestan::LooksLikeMixedPostings(Datum(Units({1, 1, 5}) + "x")));
  const std::string mixed = Units({1, 1, 99, 2});
  const DBDatum datum = Datum(mixed);
  EXPECT_EQ(kestan::KindOf(Datum("d-day"), &datum, kRulesWithoutPositions), RecordKind::kPosting);
}

TEST(RecordKindTest, AWordOfNoFamilyIsKnownByItsFirstPosting) {
  EXPECT_EQ(KindOf("e-mail", Units({1, 1, 1}) + "x"), RecordKind::kPosting);
  EXPECT_EQ(KindOf("e-mail", Units({1, 1, 1, 2, 9, 1})), RecordKind::kPosting);
  EXPECT_EQ(KindOf("e-mail", "text"), RecordKind::kOther);
}

TEST(RecordKindTest, PostingListsHoldWholePostingsOfKnownCodes) {
  EXPECT_TRUE(IsPostings(Units({3, 2, 1, 2, 1, 1, 7})));
  EXPECT_FALSE(IsPostings(""));
  EXPECT_FALSE(IsPostings(Units({3, 1, 1}) + "x"));
  EXPECT_FALSE(IsPostings(Units({4, 1, 1})));
  EXPECT_FALSE(IsPostings(Units({0, 1, 1})));
  EXPECT_FALSE(IsPostings(Units({3, 1, 0})));
  EXPECT_FALSE(IsPostings(Units({3, 0})));
  EXPECT_FALSE(IsPostings(Units({3, 2, 1})));
  EXPECT_FALSE(IsPostings(Units({3})));
  EXPECT_TRUE(IsPostings(Units({3, 1}), kRulesWithoutPositions));
  EXPECT_FALSE(IsPostings(Units({3, 4}), kRulesWithoutPositions));
}

}  // namespace
}  // namespace kestan_tests
