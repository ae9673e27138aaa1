// SPDX-License-Identifier: GPL-3.0-or-later
// What posting records say of the documents whose words they list.
#include <kestan/maintenance/repair/count_postings.h>

#include <string>

#include "tests/maintenance/repair/salvaged_index.h"

namespace kestan_maintenance {
namespace {

class CountPostingsTest : public SalvagedIndex {
 protected:
  // Counts the postings of all salvaged records; codes 1 to 3 are known.
  kestan::PostingCounts Count(RepairAction action, bool with_positions = true) {
    const kestan::PostingRules rules{with_positions, 9};
    kestan::KeptPostings kept(rules, no_long_documents_, SetOf({1, 2, 3}));
    return kestan::CountKeptPostings(salvage_, All(action), rules, &kept);
  }

  const CodeSet no_long_documents_;
};

TEST_F(CountPostingsTest, PositionsOfCaseFoldedWordsAreCountedAndTheHighestOfAllWordsIsFound) {
  Read({{"cat", Units({1, 2, 1, 4, 2, 1, 7})}, {"Dog", Units({1, 1, 9})}});
  const kestan::PostingCounts counts = Count(RepairAction::kPostings);
  EXPECT_EQ(counts.documents[1].positions, 2U);
  EXPECT_EQ(counts.documents[1].highest, 9);
  EXPECT_EQ(counts.documents[2].positions, 1U);
  EXPECT_EQ(counts.documents[2].highest, 7);
  EXPECT_TRUE(counts.documents[1].has_own_words);
  EXPECT_FALSE(counts.documents[3].has_words);
  EXPECT_EQ(counts.posted, SetOf({1, 2}));
  EXPECT_FALSE(counts.is_any_left_out);
}

TEST_F(CountPostingsTest, PostingsOfWordsThatNoShrinkPurgesAreDoubtful) {
  Read({{"a", Units({1, 1, 5})}, {"A", Units({1, 1, 6})}});
  const kestan::PostingCounts counts = Count(RepairAction::kPostings);
  EXPECT_EQ(counts.documents[1].positions, 0U);
  EXPECT_EQ(counts.documents[1].doubtful_positions, 1U);
  EXPECT_EQ(counts.documents[1].highest, 0);
  EXPECT_TRUE(counts.documents[1].has_words);
  EXPECT_FALSE(counts.documents[1].has_own_words);
  EXPECT_TRUE(counts.posted.none());
}

TEST_F(CountPostingsTest, ADamagedRecordIsNotKeptAsItIs) {
  Read({{"cat", Units({1, 1, 1, 2, 5, 1})}});
  const kestan::PostingCounts counts = Count(RepairAction::kPostings);
  EXPECT_EQ(counts.posted, SetOf({1}));
  EXPECT_TRUE(counts.is_any_left_out);
}

TEST_F(CountPostingsTest, APostingOfAnUnknownCodeIsLeftOutOfWordsThatNoShrinkPurges) {
  Read({{"a", Units({9, 1, 5})}});
  const kestan::PostingCounts counts = Count(RepairAction::kPostings);
  EXPECT_FALSE(counts.documents[9].has_words);
  EXPECT_TRUE(counts.is_any_left_out);
}

TEST_F(CountPostingsTest, ACopiedRecordShapedLikePostingsMayHoldWords) {
  Read({{"e-mail", Units({1, 2, 3, 5})}, {"x-y", "text"}});
  const kestan::PostingCounts counts = Count(RepairAction::kCopy);
  EXPECT_TRUE(counts.documents[1].has_words);
  EXPECT_FALSE(counts.documents[1].has_own_words);
  EXPECT_EQ(counts.documents[1].doubtful_positions, 2U);
  EXPECT_TRUE(counts.posted.none());
}

TEST_F(CountPostingsTest, EachUnitOfACopiedMixedRecordMayBeACode) {
  Read({{"e-mail", Units({1, 1, 20, 2})}});
  const kestan::PostingCounts counts = Count(RepairAction::kCopy, false);
  for (const Code code : {Code{1}, Code{2}, Code{20}})
    EXPECT_TRUE(counts.documents[code].has_words) << code;
  EXPECT_FALSE(counts.documents[3].has_words);
}

TEST_F(CountPostingsTest, DroppedAndRewrittenRecordsAreNotCounted) {
  Read({{"cat", Units({1, 1, 1})}});
  EXPECT_FALSE(Count(RepairAction::kDrop).documents[1].has_words);
  EXPECT_FALSE(Count(RepairAction::kRewrite).documents[1].has_words);
}

class FindLongDocumentsTest : public SalvagedIndex {
 protected:
  CodeSet Found(bool with_positions = true, RepairAction action = RepairAction::kPostings) const {
    return kestan::FindLongDocuments(salvage_, All(action), with_positions);
  }
};

TEST_F(FindLongDocumentsTest, ADocumentWithAWordAtTheLastPositionIsLong) {
  Read({{"cat", Units({1, 1, 65534, 2, 2, 65535, 4})}, {"dog", Units({65535, 1, 1})}});
  EXPECT_EQ(Found(), SetOf({2}));
}

TEST_F(FindLongDocumentsTest, DamagedRecordsAndOtherActionsShowNone) {
  Read({{"cat", Units({2, 1, 65535, 0})}});
  EXPECT_EQ(Found(), SetOf({}));
  Read({{"cat", Units({2, 1, 65535})}});
  EXPECT_EQ(Found(), SetOf({2}));
  EXPECT_EQ(Found(false), SetOf({}));
  EXPECT_EQ(Found(true, RepairAction::kCopy), SetOf({}));
}

class HighestCodePostedTest : public SalvagedIndex {
 protected:
  Code Highest(const CodeSet& long_documents = CodeSet(), bool with_positions = true) const {
    return kestan::HighestCodePosted(salvage_, All(RepairAction::kPostings), with_positions,
                                     long_documents);
  }
};

TEST_F(HighestCodePostedTest, ItIsThatOfValidRecordsAlone) {
  Read({{"cat", Units({8, 1, 2, 3, 1, 1})}, {"dog", Units({9, 2, 1})}});
  EXPECT_EQ(Highest(), 8);
  EXPECT_EQ(Highest({}, false), 9);
  Read({{"g-opts", ""}});
  EXPECT_EQ(Highest(), 0);
}

TEST_F(HighestCodePostedTest, PositionsOfLongDocumentsMayDescend) {
  Read({{"cat", Units({9, 2, 65535, 1})}});
  EXPECT_EQ(Highest(), 0);
  EXPECT_EQ(Highest(SetOf({9})), 9);
}

}  // namespace
}  // namespace kestan_maintenance
