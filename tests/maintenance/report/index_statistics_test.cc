// SPDX-License-Identifier: GPL-3.0-or-later
// Numbers of an index, and whether a shrink gives back what was promised.
#include <kestan/maintenance/statistics.h>

#include <filesystem>
#include <string>

#include "tests/maintenance/maintenance_test.h"
#include "tests/support/gdbm_calls.h"

namespace kestan_tests {
namespace {

using namespace std::string_literals;
using kestan::IndexStatistics;

IndexStatistics Read(const std::string& path) {
  Database store;
  EXPECT_EQ(store.Open(path.c_str(), 0), 0);
  return kestan::ReadStatistics(store);
}

IndexStatistics ReadRecords(const Records& records) {
  const TempDir folder;
  Plant(folder / "index", records);
  return Read(folder / "index");
}

// Returns the numbers of a kind as text.
std::string Shown(const kestan::RecordBytes& bytes) {
  return std::to_string(bytes.records) + " records, " + std::to_string(bytes.key_bytes) + " + " +
         std::to_string(bytes.value_bytes) + " bytes";
}

// A posting record without positions, of `count` documents.
std::string Codes(unsigned count) {
  std::string record;
  for (unsigned code = 1; code <= count; ++code) record += Units({code});
  return record;
}

TEST(StatisticsTest, CountDocumentsAndCodes) {
  const IndexStatistics statistics = ReadRecords(With({{"g-avail", Units({3, 4, 6})},
                                                       {"g-deleted", Units({5})},
                                                       {"g-code", Units({6})},
                                                       {"g-opts", Units({6, 1})}}));
  EXPECT_EQ(statistics.documents, 2u);
  EXPECT_EQ(statistics.removed_codes, 1u);
  EXPECT_EQ(statistics.reusable_codes, 3u);
  EXPECT_EQ(statistics.highest_code, 6u);
  EXPECT_EQ(statistics.option_flags, 0x10006u);
  EXPECT_EQ(statistics.file_error, kestan::StoreError::kNone);
}

TEST(StatisticsTest, CountWordsPostingsAndPositions) {
  const IndexStatistics statistics =
      ReadRecords(With({{"fox", Units({1, 3, 3, 4, 5})}, {"hen", ""}}));
  EXPECT_EQ(statistics.words, 4u);
  EXPECT_EQ(statistics.unused, 1u);
  EXPECT_EQ(statistics.postings, 4u);
  EXPECT_EQ(statistics.positions, 6u);
}

TEST(StatisticsTest, WordsWithHyphensAreWords) {
  const std::string postings = Units({1, 1, 3, 2, 1, 2});
  const IndexStatistics statistics = ReadRecords(With({{"d-day", postings},
                                                       {"c-section", postings},
                                                       {"t-shirt", postings},
                                                       {"w-2", postings},
                                                       {"e-mail", postings}}));
  EXPECT_EQ(statistics.documents, 2u);
  EXPECT_EQ(statistics.words, 7u);
  EXPECT_EQ(statistics.postings, 13u);
  EXPECT_EQ(statistics.positions, 13u);
  EXPECT_EQ(Shown(statistics.name_records), "2 records, 8 + 2 bytes");
  EXPECT_EQ(Shown(statistics.titles), "0 records, 0 + 0 bytes");
  EXPECT_EQ(Shown(statistics.other_records), "0 records, 0 + 0 bytes");
}

TEST(StatisticsTest, WithoutPositionsCountCodes) {
  const IndexStatistics statistics =
      ReadRecords({{"g-opts", Units({1, 0})}, {"cat", Codes(7)}, {"dog", Codes(1)}});
  EXPECT_EQ(statistics.postings, 8u);
  EXPECT_EQ(statistics.positions, 0u);
}

TEST(StatisticsTest, CountBytesByKind) {
  const IndexStatistics statistics = ReadRecords(With({{"t-a", "Title"},
                                                       {"t-", "No name"},
                                                       {"s-a", ""},
                                                       {"u-a", "user"},
                                                       {"u-b", "other"},
                                                       {"w-list", "\x80red"},
                                                       {"q-x", "??"}}));
  EXPECT_EQ(Shown(statistics.posting_records), "2 records, 6 + 18 bytes");
  EXPECT_EQ(Shown(statistics.document_records), "2 records, 6 + 16 bytes");
  EXPECT_EQ(Shown(statistics.name_records), "2 records, 8 + 2 bytes");
  EXPECT_EQ(Shown(statistics.titles), "2 records, 5 + 12 bytes");
  EXPECT_EQ(Shown(statistics.summaries), "1 records, 3 + 0 bytes");
  EXPECT_EQ(Shown(statistics.user_records), "2 records, 6 + 9 bytes");
  EXPECT_EQ(Shown(statistics.word_lists), "1 records, 6 + 4 bytes");
  EXPECT_EQ(Shown(statistics.system_records), "2 records, 12 + 6 bytes");
  EXPECT_EQ(Shown(statistics.other_records), "1 records, 3 + 2 bytes");
  EXPECT_EQ(statistics.record_bytes, 55u + 69u);
}

// Both sides of each limit: 1, 2, 3 to 4, 5 to 8, ..., 32769 to 65536.
TEST(StatisticsTest, WordsFallIntoClassesOfFrequency) {
  Records records{{"g-opts", Units({1, 0})}};
  for (unsigned count : {1u, 2u, 3u, 4u, 5u, 8u, 9u, 32768u, 32769u, 65535u}) {
    records["word" + std::to_string(count)] = Codes(count);
  }
  records["overfull"] = Codes(65535) + Codes(65535);
  const auto frequencies = ReadRecords(records).frequencies;
  ASSERT_EQ(frequencies.size(), 17u);
  const auto expect = [&](std::size_t place, std::uint64_t words, std::uint64_t postings) {
    EXPECT_EQ(frequencies.at(place).words, words) << place;
    EXPECT_EQ(frequencies.at(place).postings, postings) << place;
  };
  expect(0, 1, 1);
  expect(1, 1, 2);
  expect(2, 2, 3 + 4);
  expect(3, 2, 5 + 8);
  expect(4, 1, 9);
  expect(5, 0, 0);
  expect(15, 1, 32768);
  expect(16, 3, 32769 + 65535 + 65535 + 65535);
}

TEST(StatisticsTest, PostingsOfRemovedDocumentsCanBePurged) {
  const Records records = With({{"g-deleted", Units({2})}, {"x", Units({2, 1, 2, 1, 1, 3})}});
  EXPECT_EQ(ReadRecords(records).removed_posting_bytes, 6u);  // "cat" gives its posting, "x" never
  EXPECT_EQ(ReadRecords(ValidRecords()).removed_posting_bytes, 0u);
}

TEST(StatisticsTest, WithoutAFileSaySo) {
  Database store;
  IndexStatistics statistics;
  EXPECT_EQ(StandardErrorOf([&] { statistics = kestan::ReadStatistics(store); }),
            "Kestan: Call to database::flush without an open database\n");
  EXPECT_EQ(statistics.file_error, kestan::StoreError::kNotOpen);
  EXPECT_EQ(statistics.documents, 0u);
}

TEST(StatisticsTest, LeaveOutWhatCannotBeReadAndSaySo) {
  const TempDir folder;
  Plant(folder / "index", ValidRecords());
  const auto records_of = [](const IndexStatistics& all) {
    return all.words + all.documents + all.name_records.records + all.system_records.records;
  };
  GdbmWatch watch;
  watch.Fail("fetch", 4, GDBM_FILE_READ_ERROR);  // options, counter and removed codes come first
  const IndexStatistics statistics = Read(folder / "index");
  EXPECT_EQ(statistics.file_error, kestan::StoreError::kFileRead);
  EXPECT_EQ(records_of(statistics), ValidRecords().size() - 1);
  watch.Fail("nextkey", 2, GDBM_FILE_SEEK_ERROR);
  EXPECT_EQ(Read(folder / "index").file_error, kestan::StoreError::kFileSeek);
}

TEST_F(IndexTest, StatisticsHaveTheFilesSize) {
  engine_.CloseIndex();
  EXPECT_EQ(Read(path_).file_bytes, std::filesystem::file_size(path_));
}

// ---- What a shrink gives back ----

class ShrinkEstimateTest : public IndexTest {
 protected:
  // Shrinks the index and compares its size with what the statistics promised before and say now.
  void ExpectPromiseKept() {
    engine_.CloseIndex();
    const IndexStatistics before = Read(path_);
    ASSERT_EQ(engine_.OpenIndex(path_.c_str(), 1), 0);
    engine_.ShrinkIndex();
    engine_.CloseIndex();
    const IndexStatistics after = Read(path_);
    const auto promised = static_cast<double>(before.smallest_file_bytes);
    const auto left = static_cast<double>(after.file_bytes);
    EXPECT_NEAR(left, promised, promised / 5);
    EXPECT_EQ(before.reclaimable_bytes, before.file_bytes > before.smallest_file_bytes
                                            ? before.file_bytes - before.smallest_file_bytes
                                            : 0);
    EXPECT_EQ(after.removed_posting_bytes, 0u);
    EXPECT_EQ(before.posting_records.value_bytes - after.posting_records.value_bytes,
              before.removed_posting_bytes);
    EXPECT_LE(after.reclaimable_bytes, after.file_bytes / 5);
  }

  // Adds documents of `words` words, each one drawn from `vocabulary` words.
  void AddDocuments(unsigned documents, unsigned words, unsigned vocabulary) {
    for (unsigned number = 0; number < documents; ++number) {
      std::string text;
      for (unsigned i = 0; i < words; ++i) {
        chance_ = chance_ * 1103515245 + 12345;
        text += "word" + std::to_string((chance_ >> 8) % vocabulary) + ' ';
      }
      engine_.AddDocumentWords(("document" + std::to_string(number)).c_str(), text.c_str());
      if (number % 100 == 99) engine_.FlushIndex();
    }
  }

  void RemoveEvery(unsigned step, unsigned documents) {
    for (unsigned number = 0; number < documents; number += step) {
      engine_.RemoveDocumentWords(("document" + std::to_string(number)).c_str());
    }
  }

 private:
  std::uint32_t chance_ = 1;
};

TEST_F(ShrinkEstimateTest, HoldsForManyRareWords) {
  AddDocuments(300, 100, 20000);
  ExpectPromiseKept();
}

TEST_F(ShrinkEstimateTest, HoldsForFrequentWords) {
  AddDocuments(1000, 100, 1000);
  ExpectPromiseKept();
}

TEST_F(ShrinkEstimateTest, HoldsAfterHalfOfTheDocumentsWereRemoved) {
  AddDocuments(1000, 50, 3000);
  RemoveEvery(2, 1000);
  ExpectPromiseKept();
}

TEST_F(ShrinkEstimateTest, HoldsAfterAllDocumentsWereRemoved) {
  AddDocuments(600, 50, 3000);
  RemoveEvery(1, 600);
  ExpectPromiseKept();
}

TEST_F(ShrinkEstimateTest, HoldsForTextsOfAllLengths) {
  for (unsigned bytes : {10u, 100u, 300u, 600u, 2000u}) {
    for (int i = 0; i < 300; ++i) {
      const std::string name = std::to_string(bytes) + " " + std::to_string(i);
      engine_.DBPutUser(name.c_str(), std::string(bytes, 'u').c_str());
    }
  }
  ExpectPromiseKept();
}

TEST_F(ShrinkEstimateTest, PromisesNothingInASmallestFile) {
  engine_.CloseIndex();
  EXPECT_LT(Read(path_).reclaimable_bytes, 2048u);
}

}  // namespace
}  // namespace kestan_tests
