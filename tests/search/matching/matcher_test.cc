// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/matching/matcher.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "search/query/query_parser.h"
#include "tests/search/matching/plain_segments.h"

namespace kestan::search {
namespace {

using kestan_tests::Plain;
using kestan_tests::PlainSegments;

Query Parsed(const std::string& text) {
  return *ParseQuery(text, DefaultOperator::kAnd, QuotesMean::kPhrase);
}

// The names of the documents of `segment` that match, in order of codes.
std::string NamesOf(const Segment& segment, const std::string& text) {
  Matcher matcher(segment);
  std::string names;
  const Found found = matcher.Find(Parsed(text), Need::kCodes);
  EXPECT_TRUE(matcher.status().ok());
  for (const Code code : found->codes) names += segment.NameOf(code);
  return names;
}

class MatcherTest : public testing::Test {
 protected:
  std::string Names(const std::string& text) { return NamesOf(*segment_, text); }

  PlainSegments segments_;
  std::shared_ptr<const Segment> segment_ = segments_.Add({
      Plain("1", "the cat sat on the mat"),
      Plain("2", "a cat and a Dog sat"),
      Plain("3", "sat cat the"),
      Plain("4", "dogs in cars"),
  });
};

TEST_F(MatcherTest, WordsFindTheirDocuments) {
  EXPECT_EQ(Names("cat"), "123");
  EXPECT_EQ(Names("zebra"), "");
}

TEST_F(MatcherTest, WordInLowerCaseFindsCapitalsToo) {
  EXPECT_EQ(Names("dog"), "2");
  EXPECT_EQ(Names("Dog"), "2");
  EXPECT_EQ(Names("Cat"), "");
}

TEST_F(MatcherTest, OperatorsCombineDocuments) {
  EXPECT_EQ(Names("cat the"), "13");
  EXPECT_EQ(Names("mat OR dogs"), "14");
  EXPECT_EQ(Names("cat -mat"), "23");
  EXPECT_EQ(Names("NOT NOT cat"), "123");
}

TEST_F(MatcherTest, QuotesAskForTheirOrderAndNearDoesNot) {
  EXPECT_EQ(Names("\"the cat\""), "1");
  EXPECT_EQ(Names("the NEAR/1 cat"), "13");
  EXPECT_EQ(Names("\"cat sat\""), "1");
  EXPECT_EQ(Names("cat NEAR/4 sat"), "123");
  EXPECT_EQ(Names("cat NEAR/3 sat"), "13");
}

TEST_F(MatcherTest, PatternsStandForAllTermsThatMatch) {
  EXPECT_EQ(Names("ca*"), "1234");
  EXPECT_EQ(Names("dog~1"), "24");
  EXPECT_EQ(Names("the-c*"), "1");
}

TEST_F(MatcherTest, PatternWithoutCapitalsStandsForTermsWithoutAny) {
  Matcher matcher(*segment_);
  const Query lower = Parsed("dog*");
  const Query upper = Parsed("Dog*");
  matcher.Find(lower, Need::kCodes);
  matcher.Find(upper, Need::kCodes);
  EXPECT_EQ(matcher.TermsOf(lower), (std::vector<std::string>{"dog", "dogs"}));
  EXPECT_EQ(matcher.TermsOf(upper), std::vector<std::string>{"Dog"});
}

TEST_F(MatcherTest, WhatAWordFoundIsKept) {
  Matcher matcher(*segment_);
  const Found first = matcher.Find(Parsed("cat"), Need::kPositions);
  EXPECT_EQ(matcher.Find(Parsed("cat"), Need::kCodes), first);
}

TEST_F(MatcherTest, NotIsNearEverything) { EXPECT_EQ(Names("(NOT mat) NEAR/1 sat"), "23"); }

TEST(MatcherOfEditedSegmentTest, RemovedDocumentsNeverMatch) {
  PlainSegments segments;
  auto documents = std::vector{Plain("1", "a b"), Plain("2", "a b"), Plain("3", "c")};
  documents[1].is_removed = true;
  documents[0].new_name = "one";
  const auto segment = segments.Add(documents);
  EXPECT_EQ(NamesOf(*segment, "a"), "one");
  EXPECT_EQ(NamesOf(*segment, "a OR c*"), "one3");
  EXPECT_EQ(NamesOf(*segment, "\"a b\""), "one");
  EXPECT_EQ(NamesOf(*segment, "-c"), "one");
}

TEST(MatcherOfEditedSegmentTest, TermsThatOnlyRemovedDocumentsHoldAreNoneOfThePattern) {
  PlainSegments segments;
  auto documents = std::vector{Plain("1", "cat"), Plain("2", "car")};
  documents[1].is_removed = true;
  const auto segment = segments.Add(documents);
  Matcher matcher(*segment);
  matcher.Find(Parsed("ca*"), Need::kCodes);
  EXPECT_EQ(matcher.TermsOf(Parsed("ca*")), std::vector<std::string>{"cat"});
}

TEST(MatcherOfSegmentWithoutPositionsTest, NearAndQuotesMeanAnd) {
  PlainSegments segments;
  const auto segment = segments.Add({Plain("1", "a x y b"), Plain("2", "a")}, false);
  EXPECT_EQ(NamesOf(*segment, "a NEAR/1 b"), "1");
  EXPECT_EQ(NamesOf(*segment, "\"b a\""), "1");
}

TEST(MatcherOfLongDocumentTest, PositionsAreComparedAsTheyAreStored) {
  auto document = Plain("1", "");
  document.words.assign(65540, "x");
  document.words[65534] = "last";   // position 65535
  document.words[65535] = "first";  // position 1
  document.words[9] = "ten";        // position 10
  document.words[65539] = "five";   // position 5, before it as stored
  PlainSegments segments;
  const auto segment = segments.Add({document});
  EXPECT_EQ(NamesOf(*segment, "\"last first\""), "");
  EXPECT_EQ(NamesOf(*segment, "ten NEAR/5 five"), "1");
  EXPECT_EQ(NamesOf(*segment, "ten NEAR/4 five"), "");
  EXPECT_EQ(NamesOf(*segment, "\"x ten\""), "1");
}

TEST(MatcherOfDamagedSegmentTest, DamageIsToldAndNothingIsFound) {
  PlainSegments segments;
  const auto segment = segments.AddRecords(2, {{"cat", 2, std::string("\x01\x00\x01\x00", 4)}});
  Matcher matcher(*segment);
  EXPECT_EQ(matcher.Find(Parsed("cat OR dog"), Need::kCodes)->size(), 0u);
  EXPECT_EQ(matcher.status().code(), StatusCode::kDamaged);
}

}  // namespace
}  // namespace kestan::search
