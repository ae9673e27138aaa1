// SPDX-License-Identifier: GPL-3.0-or-later
// What a repair does with each record, and what document and name records say.
#include <kestan/maintenance/repair/classify_records.h>

#include <string>

#include "tests/maintenance/repair/salvaged_index.h"

namespace kestan_maintenance {
namespace {

using namespace std::string_literals;

const std::string kPostings = Units({1, 1, 1});
const std::string kNameKey = "c-" + Units({1});

class ClassifyRecordsTest : public SalvagedIndex {
 protected:
  // Classifies `records` and returns the action for that of `key`.
  RepairAction ActionOf(const std::string& key, const Records& records,
                        const kestan::PostingRules& rules = {true, 5}) {
    Read(records);
    return kestan::ClassifyRecords(salvage_, rules)[IndexOf(key)];
  }
  RepairAction ActionOf(const std::string& key, const std::string& value,
                        const kestan::PostingRules& rules = {true, 5}) {
    return ActionOf(key, Records{{key, value}}, rules);
  }
};

TEST_F(ClassifyRecordsTest, TheKeyDecidesWhereOnlyOneKindHasIt) {
  EXPECT_EQ(ActionOf("cat", kPostings), RepairAction::kPostings);
  EXPECT_EQ(ActionOf("cat", "noise"), RepairAction::kPostings);
  EXPECT_EQ(ActionOf("w-a", "\x80sat"), RepairAction::kWordList);
  EXPECT_EQ(ActionOf("t-a", "A title"), RepairAction::kCopy);
  EXPECT_EQ(ActionOf("x-y", "a host's own text"), RepairAction::kCopy);
  for (const char* key : {"g-code", "g-opts", "g-avail", "g-deleted"}) {
    EXPECT_EQ(ActionOf(key, Units({1, 0})), RepairAction::kRewrite) << key;
  }
}

TEST_F(ClassifyRecordsTest, ANameRecordHasAKeyOfFourBytesAndNoNul) {
  EXPECT_EQ(ActionOf(kNameKey, "a"), RepairAction::kRewrite);
  EXPECT_EQ(ActionOf(kNameKey, "a\0b"s), RepairAction::kDrop);
  EXPECT_EQ(ActionOf("c-x", "a"), RepairAction::kDrop);
  EXPECT_EQ(ActionOf("c-xyz", "a"), RepairAction::kDrop);
}

TEST_F(ClassifyRecordsTest, ARecordLikeThatOfDDayIsAWordUnlessANameRecordNamesIt) {
  EXPECT_EQ(ActionOf("d-day", kPostings), RepairAction::kPostings);
  EXPECT_EQ(ActionOf("d-day", Records{{"d-day", kPostings}, {kNameKey, "day"}}),
            RepairAction::kRewrite);
  EXPECT_EQ(ActionOf("d-day", Records{{"d-day", kPostings}, {kNameKey, "days"}}),
            RepairAction::kPostings);
}

TEST_F(ClassifyRecordsTest, AnEmptyRecordIsADocumentsIfANameRecordNamesItOrNoWordHasTheKey) {
  EXPECT_EQ(ActionOf("d-day", ""), RepairAction::kPostings);
  EXPECT_EQ(ActionOf("d-day", Records{{"d-day", ""}, {kNameKey, "day"}}), RepairAction::kRewrite);
  EXPECT_EQ(ActionOf("d-a day", ""), RepairAction::kRewrite);
}

TEST_F(ClassifyRecordsTest, WithoutPositionsAWordWithAHyphenThatStillHasThemIsCopied) {
  const std::string mixed = Units({1, 1, 9, 2});  // 9 is no code
  EXPECT_EQ(ActionOf("e-mail", mixed, {false, 5}), RepairAction::kCopy);
  EXPECT_EQ(ActionOf("e-mail", mixed, {false, 9}), RepairAction::kPostings);
  EXPECT_EQ(ActionOf("mail", mixed, {false, 5}), RepairAction::kPostings);
}

TEST_F(ClassifyRecordsTest, ADamagedWordOfNoFamilyIsFoundOnceTheHighestCodeIsKnown) {
  const std::string damaged = Units({9, 1, 1, 0});
  Read({{"x-ray", damaged}, {"x-y", "text"}, {"cat", kPostings}});
  RepairActions actions = kestan::ClassifyRecords(salvage_, {true, 5});
  EXPECT_EQ(actions[IndexOf("x-ray")], RepairAction::kCopy);
  kestan::FindDamagedWords(salvage_, {true, 8}, &actions);
  EXPECT_EQ(actions[IndexOf("x-ray")], RepairAction::kCopy);
  kestan::FindDamagedWords(salvage_, {true, 9}, &actions);
  EXPECT_EQ(actions[IndexOf("x-ray")], RepairAction::kPostings);
  EXPECT_EQ(actions[IndexOf("x-y")], RepairAction::kCopy);
}

TEST_F(ClassifyRecordsTest, OnlyRecordsThatWereToBeCopiedAreClassifiedAgain) {
  Read({{"cat", kPostings}});
  RepairActions actions = All(RepairAction::kDrop);
  kestan::FindDamagedWords(salvage_, {true, 5}, &actions);
  EXPECT_EQ(actions, All(RepairAction::kDrop));
}

class CollectCandidatesTest : public SalvagedIndex {
 protected:
  kestan::DocumentCandidates Candidates() const {
    return kestan::CollectCandidates(salvage_, All(RepairAction::kRewrite));
  }

  // Returns the code that a document record of these bytes gives.
  Code CodeIn(const std::string& record) {
    Read({{"d-a", record}});
    return Candidates().documents.at(0).code;
  }
};

TEST_F(CollectCandidatesTest, DocumentAndNameRecordsSayWhatTheyHold) {
  Read({{"d-a", Units({7, 1, 3, 0})}, {kNameKey, "b"}, {"g-code", Units({3})}});
  const kestan::DocumentCandidates candidates = Candidates();
  ASSERT_EQ(candidates.documents.size(), 1U);
  EXPECT_EQ(candidates.documents[0].name, "a");
  EXPECT_EQ(candidates.documents[0].timestamp, 0x10007U);
  EXPECT_EQ(candidates.documents[0].code, 3);
  EXPECT_TRUE(candidates.documents[0].is_current);
  ASSERT_EQ(candidates.names.size(), 1U);
  EXPECT_EQ(candidates.names[0].name, "b");
  EXPECT_EQ(candidates.names[0].code, 1);
  EXPECT_TRUE(candidates.names[0].is_current);
}

TEST_F(CollectCandidatesTest, ADocumentRecordOfAnotherLengthOrWithPaddingHasNoCode) {
  EXPECT_EQ(CodeIn(Units({7, 0, 3, 0})), 3);
  EXPECT_EQ(CodeIn(Units({7, 0, 3})), 0);
  EXPECT_EQ(CodeIn(Units({7, 0, 3, 0, 0})), 0);
  EXPECT_EQ(CodeIn(Units({7, 0, 3, 1})), 0);
  EXPECT_EQ(CodeIn(Units({7, 0, 3, 256})), 0);
}

TEST_F(CollectCandidatesTest, ANameRecordThatIsCutSaysNothing) {
  ReadCut({{kNameKey, "a"}}, kNameKey);
  EXPECT_TRUE(Candidates().names.empty());
}

TEST_F(CollectCandidatesTest, RecordsOfLostBucketsAreNotCurrent) {
  ReadWithoutBuckets({{"d-a", Units({7, 0, 1, 0})}, {kNameKey, "a"}});
  const kestan::DocumentCandidates candidates = Candidates();
  ASSERT_EQ(candidates.documents.size() + candidates.names.size(), 2U);
  EXPECT_FALSE(candidates.documents[0].is_current);
  EXPECT_FALSE(candidates.names[0].is_current);
}

TEST_F(CollectCandidatesTest, RecordsWithAnotherActionSayNothing) {
  Read({{"d-a", Units({7, 0, 1, 0})}, {kNameKey, "a"}});
  const auto candidates = kestan::CollectCandidates(salvage_, All(RepairAction::kPostings));
  EXPECT_TRUE(candidates.documents.empty());
  EXPECT_TRUE(candidates.names.empty());
}

class DropWordsInTheWayTest : public SalvagedIndex {
 protected:
  // Returns the action for the record of `key` where document "day" has code 1.
  RepairAction ActionOf(const std::string& key, RepairAction before,
                        const std::string& value = kPostings) {
    Read({{key, value}});
    kestan::RepairedDocuments documents;
    documents.documents = {{"day", 7, 1}};
    documents.codes = SetOf({1});
    RepairActions actions = All(before);
    kestan::DropWordsInTheWay(salvage_, documents, &actions);
    return actions[0];
  }
};

TEST_F(DropWordsInTheWayTest, WordsWithTheKeysOfADocumentAreDropped) {
  EXPECT_EQ(ActionOf("d-day", RepairAction::kPostings), RepairAction::kDrop);
  EXPECT_EQ(ActionOf(kNameKey, RepairAction::kPostings), RepairAction::kDrop);
  EXPECT_EQ(ActionOf("d-day", RepairAction::kCopy), RepairAction::kDrop);
}

// A name with a NUL is not classified as one. A second repair must find nothing to drop.
TEST_F(DropWordsInTheWayTest, ARecordThatHoldsTheNameOfItsDocumentIsNotDropped) {
  EXPECT_EQ(ActionOf(kNameKey, RepairAction::kDrop, "day"), RepairAction::kRewrite);
  EXPECT_EQ(ActionOf(kNameKey, RepairAction::kDrop, "night"), RepairAction::kDrop);
  EXPECT_EQ(ActionOf("c-" + Units({2}), RepairAction::kDrop, "day"), RepairAction::kDrop);
}

TEST_F(DropWordsInTheWayTest, AllOtherRecordsStay) {
  EXPECT_EQ(ActionOf("d-day", RepairAction::kRewrite), RepairAction::kRewrite);
  for (const std::string& key :
       {"d-days"s, "d-da"s, "day"s, "t-day"s, "c-" + Units({2}), "c-x"s, kNameKey + "x"}) {
    EXPECT_EQ(ActionOf(key, RepairAction::kPostings), RepairAction::kPostings) << key;
  }
}

}  // namespace
}  // namespace kestan_maintenance
