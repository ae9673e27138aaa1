// SPDX-License-Identifier: GPL-3.0-or-later
// New indexes from records that do not agree: what is kept, what is restored, and what is dropped.
#include "tests/maintenance/repair/repair_test.h"

namespace kestan_maintenance {
namespace {

using RepairOfRecordsTest = RepairTest;

TEST_F(RepairOfRecordsTest, TextsAndWordsWithHyphensAreCopied) {
  Records records = Good();
  records["t-a"] = "Title";
  records["u-x"] = std::string("\0\1", 2);
  records["w-list"] = "\x80word";
  records["x-ray"] = Units({1, 1, 3});
  EXPECT_EQ(Repaired(records), records);
}

TEST_F(RepairOfRecordsTest, WordsWithKeysLikeDocumentsAndNamesAreCopied) {
  Records records = Good();
  records["d-day"] = Units({1, 1, 3});
  records["c-note"] = Units({2, 1, 2});
  records["x-ray"] =
      Units({1, 2, 5, 5});  // no posting that makes sense, and no other record either
  kestan_tests::Plant(path_, records);
  EXPECT_EQ(Repair(), 0);
  EXPECT_EQ(Dump(new_path_), records);
}

TEST_F(RepairOfRecordsTest, NameRecordsThatCannotBeAreDropped) {
  Records records = Good();
  records["c-note"] = "text";
  records["c-" + Units({3})] = std::string("a\0b", 3);
  EXPECT_EQ(Repaired(records), Good());
  EXPECT_TRUE(Says("note: dropped: c-note"));
  EXPECT_TRUE(Says("note: dropped: c-\\x03\\x00"));
  EXPECT_EQ(result_.dropped, 2U);
}

TEST_F(RepairOfRecordsTest, ALostDocumentRecordIsRestoredWithTimeZero) {
  Records records = Good();
  records.erase("d-a");
  Records restored = Good();
  restored["d-a"] = Units({0, 0, 1, 0});
  EXPECT_EQ(Repaired(records), restored);
  EXPECT_EQ(result_.saved, 2U);
}

TEST_F(RepairOfRecordsTest, ALostNameRecordIsRestored) {
  Records records = Good();
  records.erase("c-" + Units({1}));
  EXPECT_EQ(Repaired(records), Good());
}

TEST_F(RepairOfRecordsTest, ALostCounterIsRestored) {
  Records records = Good();
  records.erase("g-code");
  EXPECT_EQ(Repaired(records), Good());
  EXPECT_TRUE(Says("note: g-code: 2, lost"));
}

TEST_F(RepairOfRecordsTest, CounterAndOptionsOfAnotherLengthAreLost) {
  Records records = Good();
  records["g-code"] = "2";
  records["g-opts"] = Units({1});
  EXPECT_EQ(Repaired(records), Good());
  EXPECT_TRUE(Says("note: g-code: 2, lost"));
}

TEST_F(RepairOfRecordsTest, CodeRecordsThatHoldNothingStay) {
  Records records = {{"g-opts", Units({0, 0})}, {"g-code", Units({0})}, {"g-avail", ""}};
  EXPECT_EQ(Repaired(records), records);
  records = Good();
  records["g-deleted"] = "";
  EXPECT_EQ(Repaired(records), records);
}

TEST_F(RepairOfRecordsTest, ACounterBelowACodeInUseIsRaised) {
  Records records = Good();
  records["g-code"] = Units({1});
  EXPECT_EQ(Repaired(records), Good());
  EXPECT_TRUE(Says("note: g-code: 2 instead of 1"));
}

TEST_F(RepairOfRecordsTest, LostOptionsAreTakenFromThePostings) {
  Records records = Good();
  records.erase("g-opts");
  EXPECT_EQ(Repaired(records), Good());
  EXPECT_TRUE(Says(
      "note: g-opts: lost, and flags of the host with it; going by the posting records, positions "
      "are kept"));
}

TEST_F(RepairOfRecordsTest, LostOptionsOfAnIndexWithoutPositionsAreTakenFromThePostings) {
  Records records = Good();
  records["cat"] = Units({1, 2});
  records["sat"] = Units({1});
  Records restored = records;
  records.erase("g-opts");
  restored["g-opts"] = Units({1, 0});
  EXPECT_EQ(Repaired(records), restored);
}

// The units 1 to 4 are four codes, and as well the code 1 with two positions.
TEST_F(RepairOfRecordsTest, FlagOneIsBelievedWherePostingsCanBeReadBothWays) {
  Records records = Good();
  records["g-opts"] = Units({1, 0});
  records["cat"] = records["sat"] = Units({1, 2, 3, 4});
  for (int i = 0; i < 10; ++i) records["word" + std::to_string(i)] = Units({1, 2, 3, 4});
  EXPECT_EQ(Repaired(records).at("g-opts"), Units({1, 0}));
}

// "cat" and "sat" are two; ten show whether there are positions.
TEST_F(RepairOfRecordsTest, WrongOptionsGiveWayToTenPostingRecordsAndNotToNine) {
  Records records = Good();
  records["g-opts"] = Units({1, 4});
  for (unsigned i = 3; i < 10; ++i) records["word" + std::to_string(i)] = Units({2, 1, i});
  EXPECT_EQ(Repaired(records).at("g-opts"), Units({1, 4}));
  records["word10"] = Units({2, 1, 2});
  EXPECT_EQ(Repaired(records).at("g-opts"), Units({0, 4}));
  EXPECT_TRUE(Says("note: g-opts: flag 1 was wrong, going by the posting records"));
  EXPECT_EQ(Dump(new_path_).at("cat"), records.at("cat"));
}

TEST_F(RepairOfRecordsTest, OfTwoWordsAtOnePlaceOneIsKept) {
  Records records = Good();
  records["dog"] = Units({1, 1, 2});
  records["Sat"] = Units({1, 1, 2});  // has the position of its case-folded form
  records["x"] = Units({1, 1, 2});    // may be an earlier document's
  const Records restored = Repaired(records);
  EXPECT_EQ(restored.count("dog") + restored.count("sat"), 1U);
  EXPECT_EQ(restored.at("Sat"), records["Sat"]);
  EXPECT_EQ(restored.at("x"), records["x"]);
  EXPECT_EQ(result_.dropped, 1U);
  EXPECT_EQ(result_.saved, 2U);
}

TEST_F(RepairOfRecordsTest, OfTwoWordsAtOnePlaceTheOneOfADamagedRecordGoes) {
  Records records = Good();
  records["dog"] = Units({1, 1, 2, 9});
  records["eel"] = Units({1, 1, 3, 9});
  Records restored = Good();
  restored["eel"] = Units({1, 1, 3});
  EXPECT_EQ(Repaired(records), restored);
  EXPECT_EQ(result_.dropped, 1U);
}

TEST_F(RepairOfRecordsTest, ADocumentWithTheCodeOfAnotherIsLost) {
  Records records = Good();
  records["d-c"] = Units({9, 0, 1, 0});
  EXPECT_EQ(Repaired(records), Good());
  EXPECT_EQ(Documents(), Lines({"saved: a", "saved: b", "lost: c: another document has its code"}));
  EXPECT_EQ(result_.lost, 1U);
}

TEST_F(RepairOfRecordsTest, ADocumentOfWhichOnlyWordsAreLeftIsLostAndItsCodeIsRemoved) {
  Records records = Good();
  records.erase("d-a");
  records.erase("c-" + Units({1}));
  Records restored = records;
  restored["g-deleted"] = Units({1});
  EXPECT_EQ(Repaired(records), restored);
  EXPECT_EQ(Documents(), Lines({"saved: b", "lost: code 1: only words of the document are left"}));
  EXPECT_EQ(result_.lost, 1U);
}

TEST_F(RepairOfRecordsTest, CodeListsHoldNoCodeTwiceNorOneInUseNorZero) {
  Records records = Good();
  records["g-code"] = Units({6});
  records["g-avail"] = Units({0, 5, 1, 5, 3, 6});
  records["g-deleted"] = Units({4, 2, 4, 0, 5, 9});
  Records restored = records;
  restored["g-deleted"] = Units({4, 5});
  restored["g-avail"] = Units({3, 6});
  EXPECT_EQ(Repaired(records), restored);
}

TEST_F(RepairOfRecordsTest, ACodeThatNothingHoldsBecomesReusable) {
  Records records = Good();
  records["g-code"] = Units({4});
  records["g-deleted"] = Units({4});
  Records restored = records;
  restored["g-avail"] = Units({3});
  EXPECT_EQ(Repaired(records), restored);
}

TEST_F(RepairOfRecordsTest, PostingsOfImpossibleCodesAreDropped) {
  Records records = Good();
  records["cat"] += Units({0, 1, 1, 3, 1, 1});
  records["g"] = Units({9});
  records["zero"] = Units({0, 1, 1});
  Records restored = Good();
  EXPECT_EQ(Repaired(records), restored);
  EXPECT_EQ(result_.dropped, 2U);
}

TEST_F(RepairOfRecordsTest, WordsOfOneByteKeepPostingsOfReusableCodes) {
  Records records = Good();
  records["g-code"] = Units({3});
  records["g-avail"] = Units({3});
  records["x"] = Units({3, 1, 1, 1, 1, 3});
  EXPECT_EQ(Repaired(records), records);
}

// A document with more words than positions counts no further than to the last one.
TEST_F(RepairOfRecordsTest, AGapInADocumentWhosePositionsStartAgainIsNotSeen) {
  std::string text = "odd ";
  for (int i = 1; i < 65540; ++i) text += "word ";
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(path_.c_str(), 1), 0);
  engine.AddDocumentWords("long", text.c_str());
  engine.CloseIndex();
  Records records = Dump(path_);
  records.erase("odd");
  Repaired(records);
  EXPECT_TRUE(Says("saved: long"));
}

// Its positions pass the highest that is not doubtful, which is no contradiction here.
TEST_F(RepairOfRecordsTest, ADocumentWhoseLastPositionIsThatOfALetterIsKeptWhole) {
  std::string text;
  for (int i = 0; i < 65534; ++i) text += "word ";
  text += "a ";
  for (int i = 0; i < 10; ++i) text += "more ";
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(path_.c_str(), 1), 0);
    engine.AddDocumentWords("long", text.c_str());
  }
  EXPECT_EQ(Repair(), 0);
  EXPECT_EQ(Dump(new_path_), Dump(path_));
  EXPECT_TRUE(Says("saved: long"));
}

}  // namespace
}  // namespace kestan_maintenance
