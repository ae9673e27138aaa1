// SPDX-License-Identifier: GPL-3.0-or-later
// Which posting is left out where several words are at one position of a document.
#include <kestan/maintenance/repair/resolve_overlaps.h>

#include <string>

#include "tests/maintenance/repair/salvaged_index.h"

namespace kestan_maintenance {
namespace {

class ResolveOverlapsTest : public SalvagedIndex {
 protected:
  // Resolves the overlaps of all salvaged records. Codes up to 9 are possible and known.
  kestan::Overlaps Resolve(const CodeSet& long_documents = CodeSet()) {
    const kestan::PostingRules rules{true, 9};
    const RepairActions actions = All(RepairAction::kPostings);
    kestan::KeptPostings kept(rules, long_documents, SetOf({1, 2, 3, 4, 5, 6, 7, 8, 9}));
    counts_ = kestan::CountKeptPostings(salvage_, actions, rules, &kept);
    return kestan::ResolveOverlaps(salvage_, actions, long_documents, counts_, &kept);
  }

  kestan::PostingCounts counts_;
};

TEST_F(ResolveOverlapsTest, WordsAtPositionsOfTheirOwnDoNotOverlap) {
  Read({{"cat", Units({1, 1, 1})}, {"dog", Units({1, 1, 2})}});
  EXPECT_FALSE(Resolve().is_any);
}

TEST_F(ResolveOverlapsTest, OfTwoWordsAtOnePositionTheOneThatComesLaterIsLeftOut) {
  Read({{"cat", Units({2, 1, 7, 1, 1, 1})}, {"dog", Units({2, 1, 8, 1, 1, 1})}});
  const kestan::Overlaps overlaps = Resolve();
  EXPECT_TRUE(overlaps.is_any);
  ASSERT_EQ(overlaps.postings.size(), 1U);
  EXPECT_EQ(overlaps.postings[0].record, 1U);
  EXPECT_EQ(overlaps.postings[0].first_unit, 3U);
  EXPECT_EQ(overlaps.postings[0].code, 1);
  EXPECT_EQ(overlaps.postings[0].positions, 1);
}

TEST_F(ResolveOverlapsTest, OfADamagedAndAWholeRecordTheDamagedOneYields) {
  for (const std::string damaged : {"cat", "dog"}) {
    Records records{{"cat", Units({1, 1, 1})}, {"dog", Units({1, 1, 1})}};
    records[damaged] += "x";
    Read(records);
    const kestan::Overlaps overlaps = Resolve();
    ASSERT_EQ(overlaps.postings.size(), 1U) << damaged;
    EXPECT_EQ(overlaps.postings[0].record, IndexOf(damaged)) << damaged;
  }
}

TEST_F(ResolveOverlapsTest, OfTwoWordsThatAreNotCurrentBothAreLeftOut) {
  ReadWithoutBuckets({{"cat", Units({1, 1, 1})}, {"dog", Units({1, 1, 1})}});
  EXPECT_EQ(Resolve().postings.size(), 2U);
}

TEST_F(ResolveOverlapsTest, ADamagedRecordKeepsAPositionThatNoOtherWordHas) {
  Read({{"ant", Units({1, 1, 2}) + "x"}, {"cat", Units({1, 1, 1})}, {"dog", Units({1, 1, 1})}});
  const kestan::Overlaps overlaps = Resolve();
  ASSERT_EQ(overlaps.postings.size(), 1U);
  EXPECT_NE(overlaps.postings[0].record, IndexOf("ant"));
}

TEST_F(ResolveOverlapsTest, ALeftOutPostingFreesItsOtherPositions) {
  Read({{"ant", Units({1, 1, 1})}, {"bee", Units({1, 2, 1, 2})}, {"cat", Units({1, 1, 2})}});
  const kestan::Overlaps overlaps = Resolve();
  ASSERT_EQ(overlaps.postings.size(), 1U);
  EXPECT_EQ(overlaps.postings[0].record, IndexOf("bee"));
}

TEST_F(ResolveOverlapsTest, WordsWithCapitalsShareThePositionsOfTheirCaseFoldedForm) {
  Read({{"Cat", Units({1, 1, 1})}, {"cat", Units({1, 1, 1})}});
  EXPECT_FALSE(Resolve().is_any);
}

TEST_F(ResolveOverlapsTest, WordsThatNoShrinkPurgesDoNotContend) {
  Read({{"a", Units({1, 1, 1})}, {"cat", Units({1, 1, 1})}});
  EXPECT_FALSE(Resolve().is_any);
}

TEST_F(ResolveOverlapsTest, LongDocumentsHaveSeveralWordsAtOnePosition) {
  Read({{"cat", Units({1, 1, 1})}, {"dog", Units({1, 1, 1})}});
  EXPECT_TRUE(Resolve().is_any);
  EXPECT_FALSE(Resolve(SetOf({1})).is_any);
}

TEST_F(ResolveOverlapsTest, ThePositionsOfLeftOutPostingsAreSubtracted) {
  Read({{"cat", Units({1, 2, 1, 2, 2, 1, 3})}, {"dog", Units({1, 2, 1, 2})}});
  const kestan::Overlaps overlaps = Resolve();
  ASSERT_EQ(counts_.documents[1].positions, 4U);
  kestan::Subtract(overlaps, &counts_);
  EXPECT_EQ(counts_.documents[1].positions, 2U);
  EXPECT_EQ(counts_.documents[2].positions, 1U);
}

TEST(OverlapsTest, HasFindsAPostingByItsRecordAndItsPlaceInIt) {
  const kestan::Overlaps overlaps{true, {{1, 3, 5, 1}, {1, 6, 7, 1}, {4, 0, 5, 1}}};
  EXPECT_TRUE(overlaps.Has(1, 3));
  EXPECT_TRUE(overlaps.Has(1, 6));
  EXPECT_TRUE(overlaps.Has(4, 0));
  EXPECT_FALSE(overlaps.Has(0, 3));
  EXPECT_FALSE(overlaps.Has(1, 0));
  EXPECT_FALSE(overlaps.Has(4, 3));
  EXPECT_FALSE(overlaps.Has(5, 0));
}

}  // namespace
}  // namespace kestan_maintenance
