// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/matching/explain.h"

#include <gtest/gtest.h>

#include <string>

#include "search/matching/matcher.h"
#include "search/query/query_parser.h"
#include "tests/search/matching/plain_segments.h"

namespace kestan::search {
namespace {

using kestan_tests::Plain;
using kestan_tests::PlainSegments;

// Returns the tree as "PART (NOTE) DOCUMENTS [PARTS]".
std::string TextOf(const Explanation& explanation) {
  std::string text = explanation.part;
  if (!explanation.note.empty()) text += " (" + explanation.note + ")";
  text += " " + std::to_string(explanation.documents);
  if (explanation.parts.empty()) return text;
  text += " [";
  for (const Explanation& part : explanation.parts) {
    if (&part != &explanation.parts.front()) text += ", ";
    text += TextOf(part);
  }
  return text + "]";
}

class ExplainTest : public testing::Test {
 protected:
  std::string Explained(const std::string& text) {
    const auto query = ParseQuery(text, DefaultOperator::kAnd, QuotesMean::kPhrase);
    const auto explained = ExplainQuery(*query, segments_.snapshot());
    EXPECT_TRUE(explained.ok());
    return TextOf(*explained);
  }

  PlainSegments segments_;
};

TEST_F(ExplainTest, DocumentsOfAllSegmentsAreCounted) {
  segments_.Add({Plain("1", "cat dog"), Plain("2", "cat")});
  segments_.Add({Plain("3", "dog cat"), {"4", {"cat"}, true}});
  EXPECT_EQ(Explained("cat"), "cat 3");
  EXPECT_EQ(Explained("zebra"), "zebra 0");
}

TEST_F(ExplainTest, PartsOfEveryKindTellWhatTheyFind) {
  segments_.Add({Plain("1", "the cat sat"), Plain("2", "dogs"), Plain("3", "sat the cat")});
  EXPECT_EQ(Explained("cat -dogs"), "AND 2 [cat 2, NOT 2 [dogs 1]]");
  EXPECT_EQ(Explained("(cat OR dogs) sat"), "AND 2 [OR 3 [cat 2, dogs 1], sat 2]");
  EXPECT_EQ(Explained("\"cat sat\""), "\"cat sat\" 1 [cat 2, sat 2]");
  EXPECT_EQ(Explained("cat NEAR/1 sat"), "NEAR/1 1 [cat 2, sat 2]");
}

TEST_F(ExplainTest, WordsThatStandForOthersAreCountedOnceInAllSegments) {
  segments_.Add({Plain("1", "cat cart cats"), Plain("2", "cat")});
  segments_.Add({Plain("3", "carts cat")});
  EXPECT_EQ(Explained("ca*"), "ca* (4 words) 3");
  EXPECT_EQ(Explained("cats~1"), "cats~1 (3 words) 3");
  EXPECT_EQ(Explained("carts*"), "carts* (1 word) 1");
}

TEST_F(ExplainTest, EqualOperandsAreExplainedOnce) {
  segments_.Add({Plain("1", "cat dog")});
  EXPECT_EQ(Explained("cat dog cat"), "AND 1 [cat 1, dog 1]");
  EXPECT_EQ(Explained("cat NEAR/1 cat"), "NEAR/1 0 [cat 1, cat 1]");
}

TEST_F(ExplainTest, WithoutPositionsNearAndQuotesAreTakenForAnd) {
  segments_.Add({Plain("1", "dog cat"), Plain("2", "cat")}, false);
  EXPECT_EQ(Explained("\"cat dog\""), "\"cat dog\" (taken for AND) 1 [cat 2, dog 1]");
  EXPECT_EQ(Explained("cat NEAR/1 dog"), "NEAR/1 (taken for AND) 1 [cat 2, dog 1]");
}

TEST_F(ExplainTest, DamageIsAnError) {
  segments_.AddRecords(2, {{"cat", 1, std::string("\x03\x00\x01\x00\x01\x00", 6)}});  // code 3 of 2
  const auto query = ParseQuery("cat OR dog");
  EXPECT_EQ(ExplainQuery(*query, segments_.snapshot()).status().code(), StatusCode::kDamaged);
}

}  // namespace
}  // namespace kestan::search
