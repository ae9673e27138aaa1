// SPDX-License-Identifier: GPL-3.0-or-later
// Whole indexes: those that the engine made are valid, and what is wrong with the file is said.
#include <gdbm.h>
#include <kestan/maintenance/check.h>
#include <kestan/maintenance/salvage/gdbm_layout.h>
#include <malloc.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "tests/maintenance/index_files.h"
#include "tests/maintenance/maintenance_test.h"
#include "tests/support/gdbm_calls.h"

namespace kestan_tests {
namespace {

class CheckTest : public IndexTest {
 protected:
  // Checks what is in the file by now.
  Lines CheckAgain() {
    engine_.CloseIndex();
    Lines lines = Check(path_).lines;
    engine_.OpenIndex(path_.c_str(), 1);
    return lines;
  }
};

// Leaves records of every kind and of every kind of change: documents that came, went and were
// replaced, codes that are free, used again and awaiting a shrink.
void Exercise(Kestan& engine) {
  engine.SetOptionFlag(2);
  engine.AddDocumentWords("a", "The cat and It");
  engine.AddDocumentWords("b", "Cat\ndog The dog and it");
  engine.AddDocumentWords("c", "it dog at and the Cat");
  engine.RemoveDocumentWords("b");
  engine.ShrinkIndex();
  engine.AddDocumentWords("new b", "the dog caf\xc3\xa9 and and");
  engine.AddDocumentWords("c", "the dog Cat and At");
  engine.ShrinkIndex();
  engine.AddDocumentWords("d", "cat dog CAT");
  engine.AddDocumentWords("e", "cat");
  engine.RemoveDocumentWords("e");
  engine.MoveDocumentWords("a", "z");
  engine.DBPutTitle("z", "Z");
  engine.DBPutSummary("z", "");
  engine.DBPutUser("z", "what the host likes");
  engine.DBPutWords("stop", "and are a the then");
  engine.DBPutWords("empty", "");
}

TEST_F(CheckTest, ATakerThatThrowsEndsTheCheck) {
  engine_.CloseIndex();
  Plant(path_, {{"g-code", "1"}, {"g-deleted", "1"}});
  Database store;
  ASSERT_EQ(store.Open(path_.c_str(), 0), 0);
  int taken = 0;
  const auto take = [&](const kestan::Finding&) {
    ++taken;
    throw std::runtime_error("enough");
  };
  EXPECT_THROW(kestan::CheckIndexWithFindings(store, take), std::runtime_error);
  EXPECT_EQ(taken, 1);
}

TEST_F(CheckTest, EveryKindOfRecordTheEngineMakesIsValid) {
  Exercise(engine_);
  engine_.CloseIndex();
  const Checked checked = Check(path_);
  EXPECT_EQ(checked.lines, Lines());
  EXPECT_EQ(checked.result.faults, 0u);
  EXPECT_EQ(checked.result.notes, 0u);
  EXPECT_EQ(checked.result.file_error, kestan::StoreError::kNone);
}

TEST_F(CheckTest, AnIndexWithoutPositionsIsValid) {
  Exercise(engine_);
  engine_.SetOptionFlag(1);
  engine_.AddDocumentWords("f", "cat and CAT");
  engine_.RemoveDocumentWords("d");
  engine_.ShrinkIndex();
  engine_.CloseIndex();
  EXPECT_EQ(Check(path_).lines, Lines());
}

// The words that no shrink purges still list code 2, which is now that of another document.
TEST_F(CheckTest, OneLetterWordsOfRemovedDocumentsAreFaults) {
  engine_.AddDocumentWords("a", "dog");
  engine_.AddDocumentWords("b", "vitamin c");
  engine_.RemoveDocumentWords("b");
  engine_.ShrinkIndex();
  engine_.FlushIndex();
  EXPECT_EQ(CheckAgain(),
            Lines({"c: entries of free codes, of documents that were removed: 1",
                   "index file: note: empty posting records, of words that no document holds: 1"}));
  engine_.AddDocumentWords("d", "no vitamin here");
  EXPECT_EQ(CheckAgain(),
            Lines({"d-d: words of one letter, or with a hyphen, contradict the others: "
                   "those of an earlier document?"}));
}

// What Kestan::MoveDocumentWords warns of: the earlier "b" has lost its document record.
TEST_F(CheckTest, ADocumentMovedOntoAnotherIsAFault) {
  engine_.AddDocumentWords("a", "cat");
  engine_.AddDocumentWords("b", "dog");
  engine_.MoveDocumentWords("a", "b");
  engine_.CloseIndex();
  EXPECT_EQ(Check(path_).lines, Lines({"c-\\x02\\x00: the document has another code, 1: b"}));
}

// A word with a hyphen that has not been cleaned from the text takes the place of a system record.
TEST_F(CheckTest, AWordThatHasTheKeyOfTheCounterIsAFault) {
  engine_.AddDocumentWords("a", "cat g-code");
  engine_.CloseIndex();
  const Lines lines = Check(path_).lines;
  EXPECT_EQ(lines.count("g-code: length 8 instead of 2 bytes"), 1u);
}

TEST_F(CheckTest, NewAndEmptyFilesAreValid) {
  engine_.CloseIndex();
  EXPECT_EQ(Check(path_).lines, Lines());
  Plant(folder_ / "empty", {});
  EXPECT_EQ(Check(folder_ / "empty").lines, Lines({"g-opts: note: missing: no option is set"}));
}

// The records of one-letter words are never purged, so that their positions are doubtful; but this
// one is what shows that the text went on after its last position.
TEST_F(CheckTest, ADocumentWhoseLastPositionIsThatOfALetterWrapsToo) {
  std::string text;
  for (int i = 0; i < 65534; ++i) text += "word ";
  text += "a ";
  for (int i = 0; i < 10; ++i) text += "Word more ";
  engine_.AddDocumentWords("long", text.c_str());
  engine_.CloseIndex();
  EXPECT_EQ(Check(path_).lines, Lines());
}

// Two documents of 65535 and 65537 words: the first fills all positions, the second wraps.
TEST_F(CheckTest, LongDocumentsAreValid) {
  std::string text;
  for (int i = 0; i < 65535; ++i) text += i % 3 == 0 ? "One " : "two ";
  engine_.AddDocumentWords("long", text.c_str());
  engine_.AddDocumentWords("longer", (text + "two two").c_str());
  engine_.CloseIndex();
  EXPECT_EQ(Check(path_).lines, Lines());
}

TEST_F(CheckTest, AWriterFindsTheSame) {
  Plant(folder_ / "bad", With({{"fox", Units({7, 1, 1})}, {"g-code", Units({1})}}));
  const Lines lines = Check(folder_ / "bad").lines;
  EXPECT_EQ(lines.size(), 2u);
  EXPECT_EQ(Check(folder_ / "bad", 1).lines, lines);
}

TEST_F(CheckTest, ChangesNoByteOfTheFile) {
  const auto bytes = [&] {
    std::ifstream file(path_, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
  };
  Exercise(engine_);
  engine_.CloseIndex();
  const std::string before = bytes();
  Check(path_, 0);
  Check(path_, 1);
  EXPECT_EQ(bytes(), before);
}

TEST_F(CheckTest, WhatWaitsInTheStoreIsSeen) {
  engine_.CloseIndex();
  Plant(path_, With({{"dog", Units({1, 1, 9})}}));
  Database store;
  ASSERT_EQ(store.Open(path_.c_str(), 1), 0);
  DBDatumPtr value;
  ASSERT_EQ(store.Get(&value, Datum("dog")), 0);
  value.ptr->data[4] = 2;
  value.ptr->dirty = true;
  value.Free();
  const kestan::CheckResult result = kestan::CheckIndex(store, {});
  EXPECT_EQ(result.notes, 0u);
}

TEST_F(CheckTest, WithoutALineTakerFindingsAreCounted) {
  engine_.CloseIndex();
  Plant(path_, {{"dog", Units({0, 1, 1})}, {"q-x", ""}});
  Database store;
  ASSERT_EQ(store.Open(path_.c_str(), 0), 0);
  const kestan::CheckResult result = kestan::CheckIndex(store, {});
  EXPECT_EQ(result.faults, 1u);
  EXPECT_EQ(result.notes, 1u);
}

TEST(CheckRecordsTest, WithoutAFileSaysSo) {
  Database store;
  kestan::CheckResult result;
  EXPECT_EQ(StandardErrorOf([&] { result = kestan::CheckIndex(store, {}); }),
            "Kestan: Call to database::flush without an open database\n");
  EXPECT_EQ(result.file_error, kestan::StoreError::kNotOpen);
  EXPECT_EQ(result.faults, 0u);
}

// ---- The file itself ----

class CheckFileTest : public testing::Test {
 protected:
  void SetUp() override {
    Plant(path_, ValidRecords());
    ASSERT_EQ(store_.Open(path_.c_str(), 0), 0);
  }

  kestan::CheckResult Run() {
    return kestan::CheckIndex(store_, [&](std::string_view line) { lines_.emplace(line); });
  }

  TempDir folder_;
  const std::string path_ = folder_ / "index";
  Database store_;
  Lines lines_;
};

TEST_F(CheckFileTest, UnreadableRecordsAreFaultsAndTheRestIsNotJudgedByThem) {
  GdbmWatch watch;
  watch.FailFrom("fetch", 3, GDBM_FILE_READ_ERROR);  // after the options and the counter
  const kestan::CheckResult result = Run();
  EXPECT_EQ(result.file_error, kestan::StoreError::kFileRead);
  Lines expected{"index file: reading or writing failed -- " +
                 std::string(gdbm_strerror(GDBM_FILE_READ_ERROR))};
  for (const std::string key : {"c-\\x01\\x00", "c-\\x02\\x00", "cat", "d-a", "d-b", "dog"}) {
    expected.insert(key + ": cannot be read");
  }
  for (const std::string key : {"g-code", "g-opts"}) EXPECT_EQ(lines_.count(key), 0u);
  lines_.erase("g-code: cannot be read");
  lines_.erase("g-opts: cannot be read");
  EXPECT_EQ(lines_, expected);
}

TEST_F(CheckFileTest, TextsAreNotJudgedWhereADocumentMayBeMissing) {
  store_.Close();
  Plant(path_, {{"t-none", "Title"}});
  const std::string note = "t-none: note: its document is not in the index";
  ASSERT_EQ(store_.Open(path_.c_str(), 0), 0);
  Run();
  EXPECT_EQ(lines_.count(note), 1u);
  store_.Close();
  ASSERT_EQ(store_.Open(path_.c_str(), 0), 0);
  lines_.clear();
  GdbmWatch watch;
  watch.Fail("fetch", 3, GDBM_FILE_READ_ERROR);  // after the options and the counter
  Run();
  EXPECT_EQ(lines_.count(note), 0u);
}

TEST_F(CheckFileTest, AWalkThatEndsEarlyIsAFault) {
  GdbmWatch watch;
  watch.Fail("nextkey", 2, GDBM_FILE_SEEK_ERROR);
  const std::string text = gdbm_strerror(GDBM_FILE_SEEK_ERROR);
  EXPECT_EQ(Run().file_error, kestan::StoreError::kFileSeek);
  EXPECT_EQ(lines_, Lines({"index file: not all records could be found -- " + text,
                           "index file: reading or writing failed -- " + text}));
}

TEST_F(CheckFileTest, ASecondWalkThatEndsEarlySuspectsNoDocument) {
  GdbmWatch watch;
  const int records = static_cast<int>(ValidRecords().size());
  watch.Fail("nextkey", records + 1, GDBM_FILE_SEEK_ERROR);
  const std::string text = gdbm_strerror(GDBM_FILE_SEEK_ERROR);
  EXPECT_EQ(Run().file_error, kestan::StoreError::kFileSeek);
  EXPECT_EQ(lines_, Lines({"index file: not all records could be found -- " + text,
                           "index file: reading or writing failed -- " + text}));
}

TEST_F(CheckFileTest, DamagedFreeSpaceIsAFault) {
  store_.Close();
  constexpr std::streamoff kPlaceOfFreeSpaceList = 48;  // in gdbm's header
  std::fstream file(path_, std::ios::binary | std::ios::in | std::ios::out);
  file.seekp(kPlaceOfFreeSpaceList).write("\xff\xff\xff\x7f", 4);
  file.close();
  ASSERT_EQ(store_.Open(path_.c_str(), 0), 0);
  const kestan::CheckResult result = Run();
  EXPECT_GT(result.file_error, kestan::StoreError::kNone);
  EXPECT_EQ(lines_,
            Lines({"index file: damaged -- " + std::string(ErrorString(result.file_error))}));
}

// ---- Elements of buckets ----

namespace gdbm = kestan::gdbm;

// Returns where the element of `key` lies in the file, after the hash that it gives.
std::streamoff KeyStartOf(const std::string& path, const std::string& key) {
  const std::string bytes = kestan_maintenance::ReadFile(path);
  const gdbm::Bytes file(bytes);
  for (std::size_t at = 512; at + sizeof(gdbm::Element) <= bytes.size(); ++at) {
    gdbm::Element element{};
    file.Read(at, &element);
    if (!file.IsValid(element)) continue;
    if (file.View(element.data, static_cast<gdbm::Offset>(element.key_bytes)) == key) {
      return static_cast<std::streamoff>(at + sizeof element.hash);
    }
  }
  ADD_FAILURE() << "no element of " << key;
  return 0;
}

void FlipByte(const std::string& path, std::streamoff at) {
  std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
  const auto byte = static_cast<char>(file.seekg(at).get() ^ 4);
  file.seekp(at).write(&byte, 1);
}

TEST(CheckElementsTest, ARecordThatAWalkShowsAndNoLookUpFindsIsAFault) {
  for (const std::string key : {"dog", "g-code", "d-b"}) {
    const TempDir folder;
    const std::string path = folder / "index";
    Plant(path, ValidRecords());
    FlipByte(path, KeyStartOf(path, key));
    EXPECT_EQ(Check(path).lines.count(key + ": no look-up finds the record"), 1U) << key;
    Database store;
    ASSERT_EQ(store.Open(path.c_str(), 0), 0);
    EXPECT_EQ(kestan::CheckStructure(store, {}), 1) << key;
  }
}

TEST(CheckElementsTest, OfAGoodFileAllAreFound) {
  const TempDir folder;
  Records records;
  for (int i = 0; i < 5000; ++i) records["word" + std::to_string(i)] = Units({1, 1, 1});
  Plant(folder / "index", records);
  Database store;
  ASSERT_EQ(store.Open((folder / "index").c_str(), 0), 0);
  EXPECT_EQ(kestan::CheckStructure(store, {}), 0);
}

TEST(CheckElementsTest, WithoutAFileSaysSo) {
  const Database store;
  std::int64_t result = 0;
  EXPECT_EQ(StandardErrorOf([&] { result = kestan::CheckStructure(store, {}); }),
            "Kestan: Call to database::size without an open database\n");
  EXPECT_EQ(result, -1);
}

TEST(CheckElementsTest, ALengthThatReachesIntoTheNextRecordIsAFault) {
  const TempDir folder;
  const std::string path = folder / "index";
  Plant(path, ValidRecords());
  constexpr std::streamoff kAfterTheKeyStart = 4 + 8 + 4;  // key start, place, length of the key
  FlipByte(path, KeyStartOf(path, "c-\1" + std::string(1, '\0')) + kAfterTheKeyStart);
  const Lines lines = Check(path).lines;
  EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
    return line.find("share bytes") != std::string::npos ||
           line.find("free space that is in use") != std::string::npos;
  }));
}

// ---- Memory ----

TEST(CheckMemoryTest, HoldsNoMoreThan16MiBOfRecords) {
  constexpr std::size_t kRecords = 3900;  // so that something is left at the end of each walk
  constexpr std::size_t kBytes = 20000;
  constexpr std::size_t kMostBytes = std::size_t{1} << 24;
  const TempDir folder;
  Records records;
  for (std::size_t i = 0; i < kRecords; ++i) {
    records["u-" + std::to_string(i)] = std::string(kBytes, 'x');
  }
  Plant(folder / "index", records);
  records.clear();
  const auto bytes_in_use = [] {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
  };
  Database store;
  ASSERT_EQ(store.Open((folder / "index").c_str(), 0), 0);
  const std::size_t before = bytes_in_use();
  std::size_t most = 0;
  std::size_t lines = 0;
  kestan::CheckIndex(store, [&](std::string_view) {
    most = std::max(most, bytes_in_use() - std::min(before, bytes_in_use()));
    ++lines;
  });
  EXPECT_EQ(lines, kRecords + 1);  // one for each, and one for the missing options
  // gdbm keeps the record of each bucket that it read last, and one bucket has some 11.
  EXPECT_LT(most, kMostBytes + kRecords / 8 * (kBytes + 1000));
}

TEST(CheckMemoryTest, FlushesOnItsWay) {
  const TempDir folder;
  Records records;
  for (int i = 0; i < 2500; ++i) records["word" + std::to_string(i)] = "";
  Plant(folder / "index", records);
  Database store;
  ASSERT_EQ(store.Open((folder / "index").c_str(), 0), 0);
  const GdbmWatch watch;
  kestan::CheckIndex(store, {});
  const auto calls = watch.Calls();
  EXPECT_EQ(std::count_if(calls.begin(), calls.end(),
                          [](const auto& call) { return call.function == "sync"; }),
            2 + 2 * 3);
}

}  // namespace
}  // namespace kestan_tests
