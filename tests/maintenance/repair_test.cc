// New indexes from damaged ones: what is kept, what is restored, and what is said.
#include <gtest/gtest.h>
#include <kestan/maintenance.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <filesystem>

#include "tests/maintenance/index_files.h"

namespace kestan_maintenance {
namespace {

using kestan_tests::Dump;
using kestan_tests::Records;
using kestan_tests::Units;

class RepairTest : public testing::Test {
 protected:
  int Repair() {
    lines_.clear();
    return kestan::RepairIndex(
        path_.c_str(), new_path_.c_str(),
        [this](std::string_view line) { lines_.emplace_back(line); }, &result_);
  }

  // Repairs an index of these records.
  //   Returns  the new one, which must pass the check.
  Records Repaired(const Records& records) {
    std::filesystem::remove(path_);
    std::filesystem::remove(new_path_);
    kestan_tests::Plant(path_, records);
    EXPECT_EQ(Repair(), 0);
    ExpectSound();
    return Dump(new_path_);
  }

  void ExpectSound() {
    Database store;
    ASSERT_EQ(store.Open(new_path_.c_str(), 0), 0);
    const auto check = kestan::CheckIndex(store, [this](std::string_view line) {
      if (line.find(": note: ") == std::string_view::npos) lines_.emplace_back(line);
    });
    EXPECT_EQ(check.faults, 0U) << lines_.back();
    EXPECT_EQ(check.file_error, 0);
  }

  bool Says(const std::string& line) const {
    return std::find(lines_.begin(), lines_.end(), line) != lines_.end();
  }

  // The lines about documents.
  std::vector<std::string> Documents() const {
    std::vector<std::string> documents;
    for (const std::string& line : lines_) {
      if (line.substr(0, 6) != "note: ") documents.push_back(line);
    }
    return documents;
  }

  using Lines = std::vector<std::string>;

  // Two documents, "a" of the words "cat sat" and "b" of "cat".
  static Records Good() {
    return {{"g-code", Units({2})},
            {"g-opts", Units({0, 0})},
            {"d-a", Units({7, 0, 1, 0})},
            {"c-" + Units({1}), "a"},
            {"d-b", Units({8, 0, 2, 0})},
            {"c-" + Units({2}), "b"},
            {"cat", Units({1, 1, 1, 2, 1, 1})},
            {"sat", Units({1, 1, 2})}};
  }

  kestan_tests::TempDir folder_;
  const std::string path_ = folder_ / "index";
  const std::string new_path_ = folder_ / "new";
  kestan::RepairResult result_;
  Lines lines_;
};

TEST_F(RepairTest, AGoodIndexStaysAsItIs) {
  EXPECT_EQ(Repaired(Good()), Good());
  EXPECT_EQ(lines_, Lines({"saved: a", "saved: b"}));
  EXPECT_EQ(result_.saved, 2U);
  EXPECT_EQ(result_.records, 8U);
  EXPECT_FALSE(result_.was_damaged);
}

TEST_F(RepairTest, IndexesOfAHostStayAsTheyAre) {
  for (unsigned seed = 0; seed < 8; ++seed) {
    std::filesystem::remove(path_);
    std::filesystem::remove(new_path_);
    MakeIndex(path_, 30 + 40 * static_cast<int>(seed), seed);
    ASSERT_EQ(Repair(), 0);
    EXPECT_EQ(Dump(new_path_), Dump(path_));
    EXPECT_EQ(result_.words_missing + result_.half_written + result_.lost, 0U);
    ExpectSound();
  }
}

TEST_F(RepairTest, AnIndexWithoutPositionsStaysAsItIs) {
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(path_.c_str(), 1), 0);
  engine.SetOptionFlag(1);
  engine.AddDocumentWords("a", "the cat sat");
  engine.AddDocumentWords("b", "the dog");
  engine.CloseIndex();
  ASSERT_EQ(Repair(), 0);
  EXPECT_EQ(Dump(new_path_), Dump(path_));
  EXPECT_EQ(lines_, Lines({"saved: a", "saved: b"}));
}

TEST_F(RepairTest, AnEmptyIndexStaysAsItIs) {
  const Records empty = {{"g-opts", Units({0, 0})}};
  EXPECT_EQ(Repaired(empty), empty);
}

TEST_F(RepairTest, TextsAndWordsWithHyphensAreCopied) {
  Records records = Good();
  records["t-a"] = "Title";
  records["u-x"] = std::string("\0\1", 2);
  records["w-list"] = "\x80word";
  records["x-ray"] = Units({1, 1, 3});
  EXPECT_EQ(Repaired(records), records);
}

TEST_F(RepairTest, TheDamagedFileIsNotTouched) {
  kestan_tests::Plant(path_, Good());
  const std::string before = ReadFile(path_);
  std::filesystem::permissions(path_, std::filesystem::perms::owner_read);
  EXPECT_EQ(Repair(), 0);
  EXPECT_EQ(ReadFile(path_), before);
}

TEST_F(RepairTest, AnExistingNewFileIsRefusedAndStays) {
  kestan_tests::Plant(path_, Good());
  WriteFile(new_path_, "mine");
  EXPECT_EQ(Repair(), -1);
  EXPECT_EQ(ReadFile(new_path_), "mine");
  EXPECT_EQ(lines_, Lines({new_path_ + ": File exists"}));
}

TEST_F(RepairTest, AMissingFileIsAnErrorAndLeavesNoNewFile) {
  EXPECT_EQ(Repair(), -1);
  EXPECT_FALSE(std::filesystem::exists(new_path_));
  EXPECT_EQ(lines_, Lines({path_ + ": No such file or directory"}));
}

TEST_F(RepairTest, AFileWithoutRecordsIsAnErrorAndLeavesNoNewFile) {
  for (const std::string& bytes : {std::string(), std::string(5000, 't'), std::string(600, '\0')}) {
    WriteFile(path_, bytes);
    EXPECT_EQ(Repair(), -1);
    EXPECT_FALSE(std::filesystem::exists(new_path_));
    EXPECT_EQ(lines_, Lines({path_ + ": no record was found"}));
  }
}

TEST_F(RepairTest, AFolderThatIsNotThereIsAnError) {
  kestan_tests::Plant(path_, Good());
  EXPECT_EQ(kestan::RepairIndex(path_.c_str(), (folder_ / "none/new").c_str(), {}, &result_), -1);
}

TEST_F(RepairTest, AFileThatCannotBeWrittenWholeIsRemoved) {
  MakeIndex(path_, 100, 1);
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit little{20000, RLIM_INFINITY};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &little), 0);
  EXPECT_EQ(Repair(), -1);
  EXPECT_FALSE(std::filesystem::exists(new_path_));
  EXPECT_EQ(lines_.back().find(new_path_ + ": "), 0U);
  EXPECT_EQ(result_.records, 0U);
}

TEST_F(RepairTest, ALostDocumentRecordIsRestoredWithTimeZero) {
  Records records = Good();
  records.erase("d-a");
  Records restored = Good();
  restored["d-a"] = Units({0, 0, 1, 0});
  EXPECT_EQ(Repaired(records), restored);
  EXPECT_EQ(result_.saved, 2U);
}

TEST_F(RepairTest, ALostNameRecordIsRestored) {
  Records records = Good();
  records.erase("c-" + Units({1}));
  EXPECT_EQ(Repaired(records), Good());
}

TEST_F(RepairTest, ALostCounterIsRestored) {
  Records records = Good();
  records.erase("g-code");
  EXPECT_EQ(Repaired(records), Good());
  EXPECT_TRUE(Says("note: g-code: 2, lost"));
}

TEST_F(RepairTest, ACounterBelowACodeInUseIsRaised) {
  Records records = Good();
  records["g-code"] = Units({1});
  EXPECT_EQ(Repaired(records), Good());
  EXPECT_TRUE(Says("note: g-code: 2 instead of 1"));
}

TEST_F(RepairTest, LostOptionsAreTakenFromThePostings) {
  Records records = Good();
  records.erase("g-opts");
  EXPECT_EQ(Repaired(records), Good());
  EXPECT_TRUE(Says(
      "note: g-opts: lost, and flags of the host with it; going by the posting records, positions "
      "are kept"));
}

TEST_F(RepairTest, LostOptionsOfAnIndexWithoutPositionsAreTakenFromThePostings) {
  Records records = Good();
  records["cat"] = Units({1, 2});
  records["sat"] = Units({1});
  Records restored = records;
  records.erase("g-opts");
  restored["g-opts"] = Units({1, 0});
  EXPECT_EQ(Repaired(records), restored);
}

TEST_F(RepairTest, ADocumentOfWhichOnlyWordsAreLeftIsLostAndItsCodeIsRemoved) {
  Records records = Good();
  records.erase("d-a");
  records.erase("c-" + Units({1}));
  Records restored = records;
  restored["g-deleted"] = Units({1});
  EXPECT_EQ(Repaired(records), restored);
  EXPECT_EQ(Documents(), Lines({"saved: b", "lost: code 1: only words of the document are left"}));
  EXPECT_EQ(result_.lost, 1U);
}

TEST_F(RepairTest, CodeListsHoldNoCodeTwiceNorOneInUseNorZero) {
  Records records = Good();
  records["g-code"] = Units({6});
  records["g-avail"] = Units({0, 5, 1, 5, 3, 6});
  records["g-deleted"] = Units({4, 2, 4, 0, 5, 9});
  Records restored = records;
  restored["g-deleted"] = Units({4, 5});
  restored["g-avail"] = Units({3, 6});
  EXPECT_EQ(Repaired(records), restored);
}

TEST_F(RepairTest, ACodeThatNothingHoldsBecomesReusable) {
  Records records = Good();
  records["g-code"] = Units({4});
  records["g-deleted"] = Units({4});
  Records restored = records;
  restored["g-avail"] = Units({3});
  EXPECT_EQ(Repaired(records), restored);
}

TEST_F(RepairTest, ADocumentWithoutWordsIsHalfWritten) {
  Records records = Good();
  records["d-c"] = Units({9, 0, 3, 0});
  records["c-" + Units({3})] = "c";
  Records restored = records;
  restored["g-code"] = Units({3});
  EXPECT_EQ(Repaired(records), restored);
  EXPECT_EQ(Documents(), Lines({"saved: a", "saved: b", "half-written: c: no words"}));
  EXPECT_EQ(result_.half_written, 1U);
}

TEST_F(RepairTest, InASoundFileADocumentWithAGapIsHalfWritten) {
  Records records = Good();
  records["sat"] = Units({1, 1, 3});
  EXPECT_EQ(Repaired(records), records);
  EXPECT_EQ(Documents(), Lines({"half-written: a: at least 1 of 3 words missing", "saved: b"}));
}

TEST_F(RepairTest, InADamagedFileADocumentWithAGapHasLostWords) {
  Records records = Good();
  records["sat"] = Units({1, 1, 3});
  records["dog"] = Units({2, 1, 2, 2});
  Repaired(records);
  EXPECT_EQ(Documents(), Lines({"words missing: a: at least 1 of 3", "saved: b"}));
  EXPECT_TRUE(Says("note: dog: damaged, entries kept: 1"));
}

TEST_F(RepairTest, ADocumentAddedAfterTheLastFlushIsHalfWrittenInADamagedFileToo) {
  Records records = Good();
  records["d-c"] = Units({9, 0, 3, 0});
  records["c-" + Units({3})] = "c";
  records["dog"] = Units({3, 1, 2, 2});
  Repaired(records);
  EXPECT_EQ(Documents(),
            Lines({"saved: a", "saved: b", "half-written: c: at least 1 of 2 words missing"}));
}

TEST_F(RepairTest, NamesAreSpelledOnOneLine) {
  Records records = Good();
  records["d-x\n\xe9\\"] = Units({9, 0, 3, 0});
  records["c-" + Units({3})] = "x\n\xe9\\";
  Repaired(records);
  EXPECT_TRUE(Says("half-written: x\\x0a\\xe9\\x5c: no words"));
}

TEST_F(RepairTest, EntriesOfImpossibleCodesAreDropped) {
  Records records = Good();
  records["cat"] += Units({0, 1, 1, 3, 1, 1});
  records["g"] = Units({9});
  Records restored = Good();
  EXPECT_EQ(Repaired(records), restored);
  EXPECT_EQ(result_.dropped, 1U);
}

TEST_F(RepairTest, WordsOfOneByteKeepEntriesOfReusableCodes) {
  Records records = Good();
  records["g-code"] = Units({3});
  records["g-avail"] = Units({3});
  records["x"] = Units({3, 1, 1, 1, 1, 3});
  EXPECT_EQ(Repaired(records), records);
}

TEST_F(RepairTest, AKilledHostsDocumentsAreNamed) {
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(path_.c_str(), 1), 0);
  engine.AddDocumentWords("whole", "the cat sat on the mat");
  engine.FlushIndex();
  engine.AddDocumentWords("started", "a dog sang to the cat");
  const std::string left = folder_ / "left";
  std::filesystem::copy_file(path_, left);
  engine.CloseIndex();
  std::filesystem::rename(left, path_);
  ASSERT_EQ(Repair(), 0);
  EXPECT_EQ(Documents(), Lines({"half-written: started: no words", "saved: whole"}));
  ExpectSound();
}

TEST_F(RepairTest, ARepairedIndexTakesMoreDocuments) {
  MakeIndex(path_, 200, 4);
  std::string bytes = ReadFile(path_);
  bytes.replace(0, 2 * kBlockBytes, 2 * kBlockBytes, '\0');
  WriteFile(path_, bytes);
  ASSERT_EQ(Repair(), 0);
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(new_path_.c_str(), 1), 0);
  engine.AddDocumentWords("new", "never seen words");
  engine.ShrinkIndex();
  const int id = engine.QueryWord("never");
  EXPECT_STREQ(engine.QueryResults(id), "100 new\n");
  engine.FreeQueryResult(id);
  engine.CloseIndex();
  ExpectSound();
}

// Its positions pass the highest that is not doubtful, which is no contradiction here.
TEST_F(RepairTest, ADocumentWhoseLastPositionIsThatOfALetterIsKeptWhole) {
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
