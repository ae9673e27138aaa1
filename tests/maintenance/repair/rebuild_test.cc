// SPDX-License-Identifier: GPL-3.0-or-later
// What the new index of a repair holds, record by record.
#include <kestan/maintenance/repair/rebuild.h>

#include <gdbm.h>

#include <string>
#include <vector>

#include "tests/maintenance/repair/salvaged_index.h"

namespace kestan_maintenance {
namespace {

using Lines = std::vector<std::string>;

class RebuildTest : public SalvagedIndex {
 protected:
  // Writes the new index with the same action for every salvaged record.
  //   Returns  its records without the option flags, which every index has.
  Records Rebuilt(RepairAction action) {
    lines_.clear();
    const kestan::TakeLine take = [this](std::string_view line) { lines_.emplace_back(line); };
    const kestan::TakeFinding take_finding = kestan::AsLines(take);
    kestan::Findings findings(take_finding);
    const kestan::PostingRules rules{true, 9};
    const CodeSet no_long_documents;
    kestan::KeptPostings kept(rules, no_long_documents, SetOf({1, 2}));
    const RepairActions actions = All(action);
    WriteFile(new_path_, "");
    result_ = kestan::Rebuild(new_path_.c_str(),
                              {salvage_, actions, documents_, codes_, overlaps_, flags_}, &kept,
                              &findings);
    EXPECT_EQ(result_.error, 0);
    Records records = kestan_tests::Dump(new_path_);
    EXPECT_EQ(records.size(), result_.records);
    EXPECT_EQ(records["g-opts"], Units({flags_, 0}));
    records.erase("g-opts");
    return records;
  }

  const std::string new_path_ = folder_ / "new";
  kestan::RepairedDocuments documents_;
  kestan::AssignedCodes codes_;
  kestan::Overlaps overlaps_;
  std::uint32_t flags_ = 4;
  kestan::RebuildResult result_;
  Lines lines_;
};

TEST_F(RebuildTest, CopiedRecordsStayAsTheyAre) {
  const Records records{{"t-a", "A title"}, {"x-y", ""}};
  Read(records);
  EXPECT_EQ(Rebuilt(RepairAction::kCopy), records);
  EXPECT_EQ(lines_, Lines());
}

TEST_F(RebuildTest, DroppedRecordsAreReportedAndCountedAndRewrittenOnesAreNot) {
  Read({{"c-x", "a"}});
  EXPECT_EQ(Rebuilt(RepairAction::kDrop), Records());
  EXPECT_EQ(result_.dropped, 1U);
  ASSERT_EQ(lines_.size(), 1U);
  EXPECT_NE(lines_[0].find("c-x"), std::string::npos) << lines_[0];
  EXPECT_EQ(Rebuilt(RepairAction::kRewrite), Records());
  EXPECT_EQ(result_.dropped, 0U);
  EXPECT_EQ(lines_, Lines());
}

TEST_F(RebuildTest, DamagedPostingRecordsKeepTheirWholePostings) {
  Read({{"cat", Units({1, 1, 1, 2, 5, 1})}, {"dog", Units({2, 1, 4})}});
  EXPECT_EQ(Rebuilt(RepairAction::kPostings),
            Records({{"cat", Units({1, 1, 1})}, {"dog", Units({2, 1, 4})}}));
  EXPECT_EQ(lines_, Lines({"note: cat: damaged, entries kept: 1"}));
}

TEST_F(RebuildTest, APostingRecordOfWhichNothingIsLeftIsDropped) {
  Read({{"cat", "noise"}});
  EXPECT_EQ(Rebuilt(RepairAction::kPostings), Records());
  EXPECT_EQ(lines_, Lines({"note: cat: damaged, entries kept: 0"}));
  EXPECT_EQ(result_.dropped, 1U);
}

TEST_F(RebuildTest, OverlappingPostingsAreLeftOut) {
  Read({{"cat", Units({1, 1, 1, 2, 1, 1})}});
  overlaps_ = {true, {{0, 3, 2, 1}}};
  EXPECT_EQ(Rebuilt(RepairAction::kPostings), Records({{"cat", Units({1, 1, 1})}}));
  overlaps_ = {true, {{1, 3, 2, 1}}};  // of another record
  EXPECT_EQ(Rebuilt(RepairAction::kPostings), Records({{"cat", Units({1, 1, 1, 2, 1, 1})}}));
  EXPECT_EQ(lines_, Lines());
}

TEST_F(RebuildTest, DamagedWordListsAreRepairedAndOthersStayAsTheyAre) {
  Read({{"w-a", "\x80sat\x85s"}, {"w-b", "\x80sat\x82r"}});
  EXPECT_EQ(Rebuilt(RepairAction::kWordList),
            Records({{"w-a", "\x80sat\x83s"}, {"w-b", "\x80sat\x82r"}}));
  EXPECT_EQ(lines_, Lines({"note: w-a: damaged, words may be wrong"}));
}

TEST_F(RebuildTest, ACutRecordThatIsNotWrittenAgainIsReported) {
  ReadCut({{"t-a", "A title"}}, "t-a");
  EXPECT_EQ(Rebuilt(RepairAction::kCopy).count("t-a"), 1U);
  EXPECT_EQ(lines_, Lines({"note: t-a: cut where the next record begins or the file ends"}));
  Rebuilt(RepairAction::kRewrite);
  EXPECT_EQ(lines_, Lines());
  ReadCut({{"w-a", "\x80sat"}}, "w-a");
  Rebuilt(RepairAction::kWordList);
  ASSERT_FALSE(lines_.empty());
  EXPECT_EQ(lines_[0], "note: w-a: cut where the next record begins or the file ends");
}

TEST_F(RebuildTest, DocumentsGetBothOfTheirRecords) {
  Read({{"g-code", ""}});
  documents_.documents = {{"a", 0x10007, 2}, {"", 0, 1}};
  EXPECT_EQ(Rebuilt(RepairAction::kRewrite), Records({{"d-a", Units({7, 1, 2, 0})},
                                                      {"c-" + Units({2}), "a"},
                                                      {"d-", Units({0, 0, 1, 0})},
                                                      {"c-" + Units({1}), ""}}));
}

TEST_F(RebuildTest, SystemRecordsThatHaveAValueAreWritten) {
  Read({{"g-code", ""}});
  codes_.counter = 5;
  EXPECT_EQ(Rebuilt(RepairAction::kRewrite), Records({{"g-code", Units({5})}}));
  codes_.reusable = {4, 1};
  codes_.removed = {3};
  EXPECT_EQ(
      Rebuilt(RepairAction::kRewrite),
      Records({{"g-code", Units({5})}, {"g-avail", Units({4, 1})}, {"g-deleted", Units({3})}}));
}

TEST_F(RebuildTest, AFileThatCannotBeWrittenIsAnError) {
  Read({{"t-a", "A title"}});
  const RepairActions actions = All(RepairAction::kCopy);
  const kestan::TakeFinding nobody;
  kestan::Findings findings(nobody);
  const kestan::PostingRules rules;
  const CodeSet codes;
  kestan::KeptPostings kept(rules, codes, codes);
  const auto result =
      kestan::Rebuild((folder_ / "missing/new").c_str(),
                      {salvage_, actions, documents_, codes_, overlaps_, flags_}, &kept, &findings);
  EXPECT_EQ(result.error, GDBM_FILE_OPEN_ERROR);
  EXPECT_EQ(result.records, 0U);
}

}  // namespace
}  // namespace kestan_maintenance
