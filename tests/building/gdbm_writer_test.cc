// SPDX-License-Identifier: GPL-3.0-or-later
// Files that gdbm has not written, read and changed by gdbm.
#include <kestan/building/gdbm_writer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/building/one_hash.h"
#include "tests/support/files.h"
#include "tests/support/stored_records.h"
#include "tests/support/temp_dir.h"

namespace kestan_tests {
namespace {

using kestan::RecordPlace;
using kestan::StoreError;
using kestan::gdbm::Writer;

constexpr std::size_t kAFullBlock = (512 - sizeof(kestan::gdbm::BucketHead)) / 24;

Records NumberedRecords(std::size_t count) {
  Records records;
  for (std::size_t i = 0; i < count; ++i) {
    records["key " + std::to_string(i)] = std::string(i % 37, 'v') + std::to_string(i);
  }
  return records;
}

// Returns the first bytes of the record at `place` of a file, as many as its key and value have or
// `most`.
std::string BytesAt(const std::string& file, const RecordPlace& place, std::size_t most) {
  const std::size_t bytes = std::size_t{place.key_bytes} + place.value_bytes;
  return file.substr(static_cast<std::size_t>(place.offset), std::min(bytes, most));
}

class GdbmWriterTest : public testing::Test {
 protected:
  StoreError Write(const Records& records, std::size_t expected = 0) {
    std::filesystem::remove(path_);
    Writer writer;
    EXPECT_EQ(writer.Create(path_.c_str(), expected), StoreError::kNone);
    for (const auto& [key, value] : records) writer.Add(key, value);
    EXPECT_EQ(writer.records(), records.size());
    return writer.Finish();
  }

  // Writes the records, and expects that gdbm finds each and no others.
  void ExpectReadBack(const Records& records, std::size_t expected = 0) {
    ASSERT_EQ(Write(records, expected), StoreError::kNone);
    ExpectInFile(records);
  }

  void ExpectInFile(const Records& records) {
    GDBM_FILE file = OpenGdbm(path_, GDBM_WRITER);
    EXPECT_EQ(gdbm_avail_verify(file), 0);
    gdbm_count_t count = 0;
    EXPECT_EQ(gdbm_count(file, &count), 0);
    EXPECT_EQ(count, records.size());
    for (const auto& [key, value] : records) {
      const datum found = gdbm_fetch(file, GdbmDatum(key));
      ASSERT_NE(found.dptr, nullptr) << key;
      EXPECT_EQ(GdbmBytes(found), value) << key;
      std::free(found.dptr);
    }
    EXPECT_EQ(gdbm_needs_recovery(file), 0);
    gdbm_close(file);
    EXPECT_TRUE(Dump(path_) == records);
  }

  // Has gdbm add, replace and delete records of the file, one in three each.
  void Change(Records* records) {
    GDBM_FILE file = OpenGdbm(path_, GDBM_WRITER);
    const Records before = *records;
    std::size_t number = 0;
    for (const auto& [key, value] : before) {
      int failed = 0;
      if (number % 3 == 0) failed = Store(file, records, key + " new", value);
      if (number % 3 == 1) failed = Store(file, records, key, value + value + "x");
      if (number % 3 == 2) {
        failed = gdbm_delete(file, GdbmDatum(key));
        records->erase(key);
      }
      EXPECT_EQ(failed, 0) << key;
      ++number;
    }
    gdbm_close(file);
  }

  void Reorganize() {
    GDBM_FILE file = OpenGdbm(path_, GDBM_WRITER);
    EXPECT_EQ(gdbm_reorganize(file), 0);
    gdbm_close(file);
  }

  static int Store(GDBM_FILE file, Records* records, const std::string& key,
                   const std::string& value) {
    (*records)[key] = value;
    return gdbm_store(file, GdbmDatum(key), GdbmDatum(value), GDBM_REPLACE);
  }

  std::uintmax_t FileBytes() const { return std::filesystem::file_size(path_); }

  TempDir folder_;
  const std::string path_ = folder_ / "file";
};

TEST_F(GdbmWriterTest, WithoutRecordsMakesAFileThatGdbmReadsAndFills) {
  Records records;
  ExpectReadBack(records);
  GDBM_FILE file = OpenGdbm(path_, GDBM_WRITER);
  for (const auto& [key, value] : NumberedRecords(1000)) {
    EXPECT_EQ(Store(file, &records, key, value), 0);
  }
  gdbm_close(file);
  ExpectInFile(records);
}

TEST_F(GdbmWriterTest, WritesOneRecord) { ExpectReadBack({{"key", "value"}}); }

TEST_F(GdbmWriterTest, KeyAndValueMayBeEmptyOrHoldAnyBytes) {
  ExpectReadBack({{"", "empty key"},
                  {"empty value", ""},
                  {std::string(3, '\0'), std::string("\0\xff\x80", 3)},
                  {"\xff", "x"}});
  ExpectReadBack({{"", ""}});
}

TEST_F(GdbmWriterTest, BucketsMayBeFullToTheLastPlace) {
  for (const std::size_t count : {kAFullBlock - 1, kAFullBlock, kAFullBlock + 1, std::size_t{511},
                                  std::size_t{512}, std::size_t{513}}) {
    Records records = NumberedRecords(count);
    ExpectReadBack(records);
    GDBM_FILE file = OpenGdbm(path_, GDBM_WRITER);
    EXPECT_EQ(Store(file, &records, "one more", "value"), 0) << count;
    gdbm_close(file);
    ExpectInFile(records);
  }
}

TEST_F(GdbmWriterTest, OfEverySmallNumberOfRecordsCanBeChangedByGdbm) {
  for (std::size_t count = 1; count < 60; ++count) {
    Records records = NumberedRecords(count);
    ASSERT_EQ(Write(records), StoreError::kNone);
    Change(&records);
    ExpectInFile(records);
  }
}

TEST_F(GdbmWriterTest, WritesAHundredThousandRecords) {
  ExpectReadBack(NumberedRecords(100'000), 100'000);
}

TEST_F(GdbmWriterTest, GdbmChangesAndReorganizesTheFile) {
  Records records = NumberedRecords(20'000);
  ASSERT_EQ(Write(records, 20'000), StoreError::kNone);
  for (int round = 0; round < 3; ++round) {
    Change(&records);
    ExpectInFile(records);
  }
  Reorganize();
  ExpectInFile(records);
  Change(&records);
  ExpectInFile(records);
}

TEST_F(GdbmWriterTest, GdbmMakesASmallFileLarge) {
  Records records = NumberedRecords(100);
  ASSERT_EQ(Write(records), StoreError::kNone);
  GDBM_FILE file = OpenGdbm(path_, GDBM_WRITER);
  for (const auto& [key, value] : NumberedRecords(30'000)) {
    EXPECT_EQ(Store(file, &records, key, value), 0);
  }
  gdbm_close(file);
  ExpectInFile(records);
}

TEST_F(GdbmWriterTest, WhatIsExpectedNeedNotBeRight) {
  const Records records = NumberedRecords(5000);
  ExpectReadBack(records, 5000);
  const auto bytes = FileBytes();
  for (const std::size_t expected :
       {std::size_t{0}, std::size_t{1}, std::size_t{5'000'000}, SIZE_MAX}) {
    ExpectReadBack(records, expected);
    EXPECT_LE(FileBytes(), bytes + bytes / 4);
  }
}

TEST_F(GdbmWriterTest, ManyKeysOfOneHashStandInOneBucket) {
  for (const std::size_t count : {17u, 200u, 2000u}) {
    Records records = NumberedRecords(3000);
    for (const std::string& key : KeysOfOneHash(count)) records[key] = "value of " + key;
    ExpectReadBack(records);
    Change(&records);
    ExpectInFile(records);
  }
}

// Records that were added before are moved then: buckets are larger than the start of the file.
TEST_F(GdbmWriterTest, RecordThatHadToMoveIsNotSeenAtItsOldPlace) {
  Writer writer;
  ASSERT_EQ(writer.Create(path_.c_str(), 1), StoreError::kNone);
  const std::string long_value(3 << 20, 'z');
  std::vector<std::pair<std::string, RecordPlace>> places;
  for (const std::string& key : KeysOfOneHash(1000)) {
    places.emplace_back(key, writer.Add(key, "value"));
  }
  const RecordPlace last = writer.Add("last", "value");
  const RecordPlace large = writer.Add("large", long_value);
  ASSERT_EQ(writer.Finish(), StoreError::kNone);
  const std::string file = ReadFile(path_);
  EXPECT_NE(BytesAt(file, places[0].second, 40), places[0].first);
  EXPECT_EQ(BytesAt(file, last, 9), "lastvalue");
  EXPECT_EQ(BytesAt(file, large, 9), "largezzzz");
  Records records = Dump(path_);
  EXPECT_EQ(records.size(), 1002u);
  EXPECT_EQ(records[places[0].first], "value");
  EXPECT_TRUE(records["large"] == long_value);
  Change(&records);
  ExpectInFile(records);
}

TEST_F(GdbmWriterTest, LargeRecordMovesInPieces) {
  Writer writer;
  ASSERT_EQ(writer.Create(path_.c_str(), 1), StoreError::kNone);
  const std::string long_value((3 << 20) + 7, 'z');
  Records records{{"large", long_value}};
  writer.Add("large", long_value);
  for (const std::string& key : KeysOfOneHash(600)) {
    records[key] = "value";
    writer.Add(key, "value");
  }
  ASSERT_EQ(writer.Finish(), StoreError::kNone);
  ExpectInFile(records);
}

TEST_F(GdbmWriterTest, MoreKeysOfOneHashThanABucketCanHoldAreAnError) {
  const std::size_t most = ((1 << 20) - sizeof(kestan::gdbm::BucketHead)) / 24;
  Records records;
  for (const std::string& key : KeysOfOneHash(most)) records[key] = "";
  ASSERT_EQ(Write(records), StoreError::kNone);
  GDBM_FILE file = OpenGdbm(path_, GDBM_READER);
  EXPECT_EQ(gdbm_exists(file, GdbmDatum(records.begin()->first)), 1);
  EXPECT_EQ(gdbm_exists(file, GdbmDatum(records.rbegin()->first)), 1);
  gdbm_close(file);
  for (const std::string& key : KeysOfOneHash(most + 1)) records[key] = "";
  EXPECT_EQ(Write(records), StoreError::kDirectoryOverflow);
}

TEST_F(GdbmWriterTest, KeysOfOneHashAreRefusedWhereThatIsWanted) {
  for (const std::size_t others : {0u, 5000u, 100'000u}) {
    std::filesystem::remove(path_);
    Writer writer;
    ASSERT_EQ(writer.Create(path_.c_str(), 0), StoreError::kNone);
    for (const auto& [key, value] : NumberedRecords(others)) writer.Add(key, value);
    std::size_t taken = 0;
    for (const std::string& key : WordsOfOneHash(kestan::gdbm::kMostKeysOfOnePrefix + 10)) {
      const bool is_taken = writer.AddIfFits(key, "value").offset != 0;
      EXPECT_EQ(is_taken, taken < kestan::gdbm::kMostKeysOfOnePrefix);
      taken += is_taken ? 1 : 0;
      if (HasFailure()) break;
    }
    EXPECT_NE(writer.AddIfFits("another", "value").offset, 0u);
    EXPECT_EQ(writer.records(), others + taken + 1);
    EXPECT_EQ(writer.refused(), 10u);
    ASSERT_EQ(writer.Finish(), StoreError::kNone);
    EXPECT_EQ(Dump(path_).size(), others + taken + 1);
  }
}

// Their hashes differ in the last bits alone, which no directory looks at.
TEST_F(GdbmWriterTest, KeysOfHashesThatAgreeInMostBitsAreRefusedTogether) {
  Writer writer;
  ASSERT_EQ(writer.Create(path_.c_str(), 0), StoreError::kNone);
  const auto words = WordsOfOneHash(kestan::gdbm::kMostKeysOfOnePrefix);
  const auto prefix =
      kestan::gdbm::PrefixOf(kestan::gdbm::HashOf(words[0]), kestan::gdbm::kMostDirectoryBits);
  for (const std::string& word : words) EXPECT_NE(writer.AddIfFits(word, "").offset, 0u);
  int refused = 0;
  for (int i = 0; refused == 0 && i < 100'000'000; ++i) {
    const std::string key = "other " + std::to_string(i);
    const auto hash = kestan::gdbm::HashOf(key);
    if (kestan::gdbm::PrefixOf(hash, kestan::gdbm::kMostDirectoryBits) != prefix) continue;
    EXPECT_EQ(writer.AddIfFits(key, "").offset, 0u);
    ++refused;
  }
  EXPECT_EQ(refused, 1);
  EXPECT_EQ(writer.Finish(), StoreError::kNone);
}

TEST_F(GdbmWriterTest, KeyThatComesTwiceIsAnError) {
  for (const std::string& key :
       std::vector<std::string>{"", "key", "a key that is longer than four bytes"}) {
    for (const char* value : {"", "value", "another"}) {
      std::filesystem::remove(path_);
      Writer writer;
      ASSERT_EQ(writer.Create(path_.c_str(), 0), StoreError::kNone);
      writer.Add(key, "value");
      for (const std::string& other : KeysOfOneHash(50)) writer.Add(other, "");
      writer.Add(key, value);
      EXPECT_EQ(writer.Finish(), StoreError::kUnknown) << key;
    }
  }
}

TEST_F(GdbmWriterTest, KeysOfOneHashAreToldApart) {
  std::filesystem::remove(path_);
  const auto keys = KeysOfOneHash(100);
  Writer writer;
  ASSERT_EQ(writer.Create(path_.c_str(), 0), StoreError::kNone);
  for (const std::string& key : keys) writer.Add(key, "");
  writer.Add(keys[42], "again");
  EXPECT_EQ(writer.Finish(), StoreError::kUnknown);
}

TEST_F(GdbmWriterTest, KnowsWhichKeysItHas) {
  Writer writer;
  ASSERT_EQ(writer.Create(path_.c_str(), 0), StoreError::kNone);
  EXPECT_FALSE(writer.Contains("", 10));
  const auto keys = KeysOfOneHash(20);
  for (std::size_t i = 0; i < 10; ++i) writer.Add(keys[i], "value");
  writer.Add("", "value");
  for (std::size_t i = 0; i < 20; ++i) EXPECT_EQ(writer.Contains(keys[i], 11), i < 10) << i;
  EXPECT_TRUE(writer.Contains("", 11));
  EXPECT_TRUE(writer.Contains("", SIZE_MAX));
  EXPECT_FALSE(writer.Contains("", 10));
  EXPECT_TRUE(writer.Contains(keys[4], 5));
  EXPECT_FALSE(writer.Contains(keys[5], 5));
  EXPECT_FALSE(writer.Contains("value", 11));
  EXPECT_EQ(writer.Finish(), StoreError::kNone);
  EXPECT_EQ(Dump(path_).size(), 11u);
}

TEST_F(GdbmWriterTest, PlacesAreThoseOfTheFile) {
  Writer writer;
  ASSERT_EQ(writer.Create(path_.c_str(), 0), StoreError::kNone);
  std::vector<std::pair<std::string, RecordPlace>> places;
  for (const std::string& value : {std::string("first"), std::string(3 << 20, 'x'),
                                   std::string(1 << 20, 'y'), std::string(), std::string("last")}) {
    const std::string key = "key " + std::to_string(places.size());
    places.emplace_back(key + value, writer.Add(key, value));
    EXPECT_EQ(places.back().second.value_bytes, value.size());
  }
  ASSERT_EQ(writer.Finish(), StoreError::kNone);
  const std::string file = ReadFile(path_);
  for (const auto& [record, place] : places) {
    EXPECT_EQ(place.key_bytes, 5u);
    EXPECT_TRUE(BytesAt(file, place, SIZE_MAX) == record) << record.substr(0, 20);
  }
}

// Directory, buckets and header beside the records.
TEST_F(GdbmWriterTest, FileIsHardlyLargerThanItsRecordsAndTheirElements) {
  for (const std::size_t count : {0u, 1u, 100u, 700u, 5000u, 100'000u}) {
    const Records records = NumberedRecords(count);
    ASSERT_EQ(Write(records, count), StoreError::kNone);
    std::uintmax_t bytes = 0;
    for (const auto& [key, value] : records) bytes += key.size() + value.size();
    // Most of the rest is the start of the file, which a bucket would fit into.
    const auto start = kestan::gdbm::BucketBytes(kestan::gdbm::LargestCapacity(count));
    EXPECT_LE(FileBytes(), bytes + count * 32 + start + 2048) << count;
  }
}

TEST_F(GdbmWriterTest, OneWriterCanMakeSeveralFiles) {
  Writer writer;
  EXPECT_EQ(writer.Finish(), StoreError::kNotOpen);
  for (const char* name : {"one", "two"}) {
    ASSERT_EQ(writer.Create((folder_ / name).c_str(), 10), StoreError::kNone);
    EXPECT_EQ(writer.Create(path_.c_str(), 10), StoreError::kNotOpen);
    writer.Add("same key", name);
    EXPECT_EQ(writer.Finish(), StoreError::kNone);
    EXPECT_EQ(Dump(folder_ / name), (Records{{"same key", name}}));
  }
}

TEST_F(GdbmWriterTest, FileIsInvalidUntilItIsFinished) {
  Writer writer;
  ASSERT_EQ(writer.Create(path_.c_str(), 10), StoreError::kNone);
  for (const auto& [key, value] : NumberedRecords(50'000)) writer.Add(key, value);
  ASSERT_GT(FileBytes(), 1'000'000u);
  EXPECT_EQ(gdbm_open(path_.c_str(), 0, GDBM_READER | GDBM_NOLOCK, 0, nullptr), nullptr);
}

}  // namespace
}  // namespace kestan_tests
