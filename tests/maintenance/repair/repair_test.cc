// SPDX-License-Identifier: GPL-3.0-or-later
// New indexes from damaged ones: which files there are after a repair, and what it reports.
#include "tests/maintenance/repair/repair_test.h"

#include <kestan/maintenance/salvage/gdbm_layout.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <stdexcept>

namespace kestan_maintenance {
namespace {

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
    ExpectValid();
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

TEST_F(RepairTest, TheDamagedFileIsNotTouched) {
  kestan_tests::Plant(path_, Good());
  const std::string before = ReadFile(path_);
  std::filesystem::permissions(path_, std::filesystem::perms::owner_read);
  EXPECT_EQ(Repair(), 0);
  EXPECT_EQ(ReadFile(path_), before);
}

TEST_F(RepairTest, ATakerThatThrowsEndsTheRepairAndLeavesTheNewFile) {
  kestan_tests::Plant(path_, Good());
  const auto take = [](const kestan::Finding&) { throw std::runtime_error("enough"); };
  EXPECT_THROW(kestan::RepairIndexWithFindings(path_.c_str(), new_path_.c_str(), take, &result_),
               std::runtime_error);
  EXPECT_TRUE(std::filesystem::exists(new_path_));
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
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit little{20000, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &little), 0);
  EXPECT_EQ(Repair(), -1);
  EXPECT_FALSE(std::filesystem::exists(new_path_));
  EXPECT_EQ(lines_.back().find(new_path_ + ": "), 0U);
  EXPECT_EQ(result_.records, 0U);
  setrlimit(RLIMIT_FSIZE, &before);
}

TEST_F(RepairTest, IndexesOfManyRecordsAndOfLongOnesStayAsTheyAre) {
  Records records = Good();
  records["u-long"] = std::string(5000000, 'u');
  EXPECT_EQ(Repaired(records), records);
  records["u-long"] = "short";
  for (int i = 0; i < 10001; ++i) records["t-" + std::to_string(i)] = "title";
  EXPECT_EQ(Repaired(records), records);
  EXPECT_EQ(result_.records, records.size());
}

TEST_F(RepairTest, WhatOfTheFileIsDamagedIsReported) {
  MakeIndex(path_, 40, 3);
  const std::string good = ReadFile(path_);
  const FileMap map = MapOf(good);
  const auto directory = static_cast<std::size_t>(
      std::find(map.places.begin(), map.places.end(), Place::kDirectory) - map.places.begin());
  const auto repair_without = [&](std::size_t at, std::size_t bytes) {
    std::filesystem::remove(new_path_);
    WriteFile(path_, std::string(good).replace(at, bytes, bytes, '\0'));
    EXPECT_EQ(Repair(), 0);
  };
  const auto begins_with = [this](const std::string& start) {
    return std::any_of(lines_.begin(), lines_.end(), [&](const std::string& line) {
      return line.substr(0, start.size()) == start;
    });
  };
  const std::string of_directory = "note: the directory or what it leads to is damaged";

  repair_without(0, 0);
  EXPECT_FALSE(begins_with("note: the "));
  EXPECT_FALSE(result_.was_damaged);

  repair_without(0, 16);
  EXPECT_TRUE(Says("note: the header is damaged"));
  EXPECT_TRUE(result_.was_damaged);

  repair_without(directory, kBlockBytes);
  EXPECT_FALSE(Says("note: the header is damaged"));
  EXPECT_TRUE(Says(of_directory));
  EXPECT_TRUE(begins_with("note: buckets found beside the directory: "));
  EXPECT_TRUE(result_.was_damaged);

  bool old_records_are_reported = false;
  for (std::size_t at = 0; at < good.size(); at += kBlockBytes) {
    if (map.places[at] != Place::kBucket) continue;
    repair_without(at, std::min(kBlockBytes, good.size() - at));
    if (begins_with("note: records that may be old, for newer ones are damaged: ")) {
      old_records_are_reported = true;
    }
  }
  EXPECT_TRUE(old_records_are_reported);
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

TEST_F(RepairTest, InAValidFileADocumentWithAGapIsHalfWritten) {
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

// The code was taken from the list of reusable ones after the last flush.
TEST_F(RepairTest, ADocumentWhoseCodeWasReusedSinceTheLastFlushIsHalfWrittenToo) {
  Records records = Good();
  records["sat"] = Units({1, 1, 3});
  records["dog"] = Units({2, 1, 2, 2});
  records["g-avail"] = Units({1});
  Repaired(records);
  EXPECT_EQ(Documents(), Lines({"half-written: a: at least 1 of 3 words missing", "saved: b"}));
}

TEST_F(RepairTest, NamesAreEscapedOnOneLine) {
  Records records = Good();
  records["d-x\n\xe9\\"] = Units({9, 0, 3, 0});
  records["c-" + Units({3})] = "x\n\xe9\\";
  Repaired(records);
  EXPECT_TRUE(Says("half-written: x\\x0a\\xe9\\x5c: no words"));
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
  ExpectValid();
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
  ExpectValid();
}

// Of the last word, whose record is the last in the file, all documents but those of the lost tail
// are found.
TEST_F(RepairTest, APostingRecordThatTheEndOfTheFileCutsKeepsItsWholePostings) {
  Records records = Good();
  std::string postings;
  for (unsigned code = 3; code <= 1000; ++code) {
    postings += Units({code, 1, 1});
    records["d-" + std::to_string(code)] = Units({9, 9, code, 0});
    records["c-" + Units({code})] = std::to_string(code);
  }
  records["g-code"] = Units({1000});
  records["zebra"] = Units({1, 1, 3});
  kestan_tests::Plant(path_, records);
  kestan_tests::Plant(path_, {{"zebra", postings}});  // grows after all buckets
  const std::string bytes = ReadFile(path_);
  const std::size_t end = bytes.rfind(postings) + postings.size();
  WriteFile(path_, bytes.substr(0, end - 4));
  ASSERT_EQ(Repair(), 0);
  EXPECT_EQ(Dump(new_path_).at("zebra"), postings.substr(0, postings.size() - 6));
  EXPECT_TRUE(Says("note: zebra: damaged, entries kept: 997"));
  ExpectValid();
}

TEST_F(RepairTest, ATextThatRunsIntoTheNextRecordIsCutThere) {
  Records records = Good();
  records["t-a"] = "Title";
  records["t-b"] = "Title";
  kestan_tests::Plant(path_, records);
  std::string bytes = ReadFile(path_);
  const FileMap map = MapOf(bytes);
  std::map<std::size_t, Record> by_place;
  for (const Record& record : map.records) by_place[record.data] = record;
  auto text = by_place.begin();
  while (text->second.key[0] != 't') ++text;
  ASSERT_EQ(by_place.count(text->first + 8), 1U);  // gdbm stores records side by side
  const auto too_many = static_cast<std::int32_t>(bytes.size() - text->first - 3);
  const std::size_t place = text->second.element + offsetof(kestan::gdbm::Element, value_bytes);
  std::memcpy(&bytes.at(place), &too_many, sizeof too_many);
  WriteFile(path_, bytes);
  ASSERT_EQ(Repair(), 0);
  EXPECT_EQ(Dump(new_path_), records);
  EXPECT_TRUE(
      Says("note: " + text->second.key + ": cut where the next record begins or the file ends"));
}

}  // namespace
}  // namespace kestan_maintenance
