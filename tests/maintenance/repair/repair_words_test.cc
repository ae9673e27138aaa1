// SPDX-License-Identifier: GPL-3.0-or-later
// New indexes from records of words whose keys or bytes look like others': hyphens, lists, letters.
#include "tests/maintenance/repair/repair_test.h"

namespace kestan_maintenance {
namespace {

using RepairOfWordsTest = RepairTest;

TEST_F(RepairOfWordsTest, WordsThatLookLikeSystemRecordsStay) {
  Records records = Good();
  for (const char* word : {"d-day", "c-section", "c-ab", "t-shirt", "w-2", "e-mail", "g-force"}) {
    records[word] = Units({1, 1, 3, 2, 1, 2});
  }
  records["d-night"] = "";  // a killed host left it
  EXPECT_EQ(Repaired(records), records);
  EXPECT_EQ(Documents(), Lines({"saved: a", "saved: b"}));
  EXPECT_EQ(result_.dropped, 0U);
}

TEST_F(RepairOfWordsTest, WordsThatKeptTheirPositionsStay) {
  Records records = Good();
  records["g-opts"] = Units({1, 0});
  records["cat"] = Units({1, 2});
  records["sat"] = Units({1});
  records["d-c"] = Units({9, 9, 3, 0});
  records["c-" + Units({3})] = "c";
  records["g-code"] = Units({3});
  for (const char* word : {"d-day", "c-section", "e-mail"}) records[word] = Units({1, 1, 99, 3});
  EXPECT_EQ(Repaired(records), records);
  EXPECT_EQ(result_.saved, 3U);
  EXPECT_EQ(result_.dropped, 0U);
}

TEST_F(RepairOfWordsTest, WordsWithHyphensGiveUpOnlyPostingsThatMakeNoSense) {
  Records records = Good();
  records["d-day"] = Units({1, 1, 3, 9, 1, 2});
  records["e-mail"] = Units({1, 1, 3, 2, 1, 2}) + "x";
  Records restored = records;
  restored["d-day"] = Units({1, 1, 3});
  restored["e-mail"] = Units({1, 1, 3, 2, 1, 2});
  EXPECT_EQ(Repaired(records), restored);
  EXPECT_TRUE(Says("note: d-day: damaged, entries kept: 1"));
}

TEST_F(RepairOfWordsTest, AWordWithAHyphenIsKnownAfterTheCounterIs) {
  Records records = Good();
  records["g-code"] = Units({0});
  records["e-mail"] = Units({1, 1, 3, 1, 99, 1});
  Records restored = Good();
  restored["e-mail"] = Units({1, 1, 3});
  EXPECT_EQ(Repaired(records), restored);
}

TEST_F(RepairOfWordsTest, ADocumentRecordShapedLikePostingsIsRestoredWhereANameSaysSo) {
  Records records = Good();
  records["d-a"] = Units({2, 1, 1});
  Records restored = Good();
  restored["d-a"] = Units({0, 0, 1, 0});
  EXPECT_EQ(Repaired(records), restored);
  records["d-a"] = "";
  EXPECT_EQ(Repaired(records), restored);
}

TEST_F(RepairOfWordsTest, AWordWhoseKeyANameRecordNeedsGivesWay) {
  Records records = Good();
  const unsigned code = 'a' | 'b' << 8;
  records["g-code"] = Units({code});
  records["d-x"] = Units({9, 9, code, 0});
  records["c-ab"] = Units({1, 1, 3});
  const Records repaired = Repaired(records);
  EXPECT_EQ(repaired.at("c-ab"), "x");
  EXPECT_EQ(result_.records, repaired.size());
}

TEST_F(RepairOfWordsTest, PostingsWithTheKeyOfADocumentWithoutANameGiveWay) {
  Records records = Good();
  records["g-code"] = Units({3});
  records["c-" + Units({3})] = "";
  records["d-"] = Units({1, 1, 3});
  const Records repaired = Repaired(records);
  EXPECT_EQ(repaired.at("d-"), Units({0, 0, 3, 0}));
  EXPECT_EQ(result_.records, repaired.size());
}

TEST_F(RepairOfWordsTest, SystemRecordsThatAWordHasGrownKeepWhatTheyHeld) {
  Records records = Good();
  records["g-opts"] = Units({6, 0, 1, 1, 3});
  records["g-code"] = Units({4, 2, 1, 2});
  records["g-avail"] = Units({3, 4});
  Records restored = Good();
  restored["g-opts"] = Units({6, 0});
  restored["g-code"] = Units({4});
  restored["g-avail"] = Units({3, 4});
  EXPECT_EQ(Repaired(records), restored);
  EXPECT_TRUE(Says("note: g-opts: 10 bytes, of which the first 4 are kept"));
  EXPECT_TRUE(Says("note: g-code: 8 bytes, of which the first 2 are kept"));
}

TEST_F(RepairOfWordsTest, WordListsKeepTheirWordsAsFarAsTheyMakeSense) {
  Records records = Good();
  records["w-cut"] = "ed\x82ge";
  records["w-more"] =
      "\x80"
      "red\x85"
      "dish\x84"
      "y";
  records["w-utf8"] = "\x80\xc3\xa9t\xc3\xa9\x83ude";
  Records restored = records;
  restored["w-cut"] =
      "\x80"
      "ed\x82ge";
  restored["w-more"] =
      "\x80"
      "red\x83"
      "dish\x84"
      "y";
  EXPECT_EQ(Repaired(records), restored);
  EXPECT_TRUE(Says("note: w-cut: damaged, words may be wrong"));
  EXPECT_FALSE(Says("note: w-utf8: damaged, words may be wrong"));
}

TEST_F(RepairOfWordsTest, ARepairedWordListHasNoNuls) {
  Records records = Good();
  records["w-list"] = Units({2, 1, 3}) + "x";
  Records restored = Good();
  restored["w-list"] = "\x80\2\1\3x";
  EXPECT_EQ(Repaired(records), restored);
}

TEST_F(RepairOfWordsTest, PostingsOfAnEarlierLongDocumentStay) {
  Records records = Good();
  records["x"] = Units({1, 3, 9, 65535, 2, 1, 1, 3});
  records["e-mail"] = Units({1, 2, 9, 2, 1, 1, 3});
  EXPECT_EQ(Repaired(records), records);
}

TEST_F(RepairOfWordsTest, WordsOfAnEarlierDocumentMakeNoHalfWrittenOneWhole) {
  Records records = Good();
  records["g-code"] = Units({3});
  records["g-avail"] = Units({3});
  records["x"] = Units({3, 1, 7});
  records["d-c"] = Units({9, 0, 3, 0});
  records["c-" + Units({3})] = "c";
  Records restored = records;
  restored["g-avail"] = "";
  EXPECT_EQ(Repaired(records), restored);
  EXPECT_EQ(Documents(), Lines({"saved: a", "saved: b", "half-written: c: no words"}));
}

// Without positions, "ab" is the code 25185 too.
TEST_F(RepairOfWordsTest, ATextThatMayBeACodeLeavesOpenWhetherItsDocumentHasWords) {
  const unsigned code = 'a' | 'b' << 8;
  Records records = Good();
  records["g-opts"] = Units({1, 0});
  records["g-code"] = Units({code});
  records["cat"] = Units({1, 2});
  records["sat"] = Units({1});
  records["d-x"] = Units({9, 9, code, 0});
  records["c-ab"] = "x";
  records["t-a"] = "ab";
  Repaired(records);
  EXPECT_EQ(Documents(), Lines({"saved: a", "saved: b", "saved: x"}));
  records["t-a"] = "abc";
  records["t-"] = "abc";
  Repaired(records);
  EXPECT_EQ(Documents(), Lines({"saved: a", "saved: b", "half-written: x: no words"}));
}

}  // namespace
}  // namespace kestan_maintenance
