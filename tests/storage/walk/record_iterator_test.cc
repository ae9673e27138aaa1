// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/walk/record_iterator.h>

#include <gdbm.h>

#include <array>
#include <cstring>
#include <fstream>

#include "tests/storage/database_test.h"

namespace kestan_tests {
namespace {

using Numbers = std::vector<unsigned>;
using kestan::FlushPolicy;
using kestan::RecordIterator;
using kestan::WalkOptions;

WalkOptions VisitingUnreadable() {
  WalkOptions options;
  options.visits_unreadable = true;
  return options;
}

WalkOptions FlushingEvery(std::uint64_t records) {
  WalkOptions options;
  options.flush_policy = FlushPolicy::Every(records);
  return options;
}

class RecordIteratorTest : public DatabaseTest {
 protected:
  // Puts `count` records into the file and opens it again with an empty cache.
  void PlantMany(int count) {
    Records records;
    for (int i = 0; i < count; ++i)
      records["key" + std::to_string(i)] = "value" + std::to_string(i);
    PlantAndReopen(records);
  }

  Records Walk(const WalkOptions& options) {
    Records records;
    RecordIterator record(store_, options);
    for (; record.Valid(); record.Next()) {
      const bool has_value = record.value().ptr != nullptr;
      records[Bytes(record.key())] = has_value ? Bytes(*record.value().ptr) : "none";
    }
    walk_error_ = record.walk_error();
    all_read_ = record.all_read();
    return records;
  }

  // Returns after how many records each flush of a walk came.
  Numbers FlushesOf(const WalkOptions& options) {
    const GdbmWatch watch;
    Walk(options);
    Numbers flushes;
    unsigned records = 0;
    for (const GdbmCall& call : watch.Calls()) {
      if (call.function == "firstkey" || call.function == "nextkey") ++records;
      if (call.function == "sync") flushes.push_back(records);
    }
    return flushes;
  }

  // Walks over a file of 200 records while all of them are changed in place, and flushes it.
  //   Returns  how often records are written more than once.
  std::size_t RepeatedWritesOf(const WalkOptions& options) {
    PlantMany(200);
    const GdbmWatch watch;
    for (RecordIterator record(store_, options); record.Valid(); record.Next()) {
      Change(record.value(), "VALUE");
    }
    store_.Flush();
    return watch.Count("store") - 200;
  }

  // Opens a copy of the file in which place `entry` of gdbm's directory has the first bucket too.
  //   Returns  false if the directory has no such place.
  bool PutFirstBucketInto(std::size_t entry) {
    store_.Close();
    const std::string copy = folder_ / "damaged";
    std::filesystem::copy_file(path_, copy, std::filesystem::copy_options::overwrite_existing);
    std::fstream file(copy, std::ios::in | std::ios::out | std::ios::binary);
    std::array<char, 20> header{};
    file.read(header.data(), header.size());
    std::uint64_t directory = 0;
    std::uint32_t directory_bytes = 0;
    std::memcpy(&directory, &header[8], sizeof directory);
    std::memcpy(&directory_bytes, &header[16], sizeof directory_bytes);
    if (entry * kEntryBytes >= directory_bytes) return false;
    std::array<char, kEntryBytes> first{};
    file.seekg(static_cast<std::streamoff>(directory));
    file.read(first.data(), first.size());
    file.seekp(static_cast<std::streamoff>(directory + entry * kEntryBytes));
    file.write(first.data(), first.size());
    file.close();
    return store_.Open(copy.c_str(), 0) == 0;
  }

  static constexpr std::size_t kEntryBytes = 8;  // of gdbm's directory

  int walk_error_ = 0;
  bool all_read_ = false;
};

TEST_F(RecordIteratorTest, VisitsEachRecordOnceInTheOrderOfTheFile) {
  PlantMany(100);
  Lines expected;
  DBDatumPtr key;
  for (int end = store_.First(&key); end == 0; end = store_.Next(&key)) {
    expected.push_back(Bytes(*key.ptr));
  }
  Lines keys;
  for (RecordIterator record(store_); record.Valid(); record.Next()) {
    keys.push_back(Bytes(record.key()));
    EXPECT_EQ(Bytes(*record.value().ptr), "value" + Bytes(record.key()).substr(3));
    EXPECT_EQ(record.error(), 0);
  }
  EXPECT_EQ(keys, expected);
}

TEST_F(RecordIteratorTest, EmptyStoreHasNoRecord) {
  const RecordIterator record(store_);
  EXPECT_FALSE(record.Valid());
  EXPECT_EQ(record.walk_error(), 0);
  EXPECT_TRUE(record.all_read());
}

TEST_F(RecordIteratorTest, ClosedStoreHasNoRecordAndItsMessage) {
  store_.Close();
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_FALSE(RecordIterator(store_).Valid()); }),
            "Kestan: Call to database::first without an open database\n");
}

TEST_F(RecordIteratorTest, WalkOverKeysFetchesNoValue) {
  PlantMany(10);
  const GdbmWatch watch;
  const Records records = Walk(WalkOptions::Keys());
  EXPECT_EQ(records.size(), 10U);
  EXPECT_EQ(records.at("key3"), "none");
  EXPECT_TRUE(all_read_);
  EXPECT_EQ(watch.Count("fetch"), 0U);
}

TEST_F(RecordIteratorTest, ValueStaysWithItsHolder) {
  PlantMany(2);
  std::vector<DBDatumPtr> values;
  for (RecordIterator record(store_); record.Valid(); record.Next()) {
    values.push_back(record.value());
  }
  ASSERT_EQ(values.size(), 2U);
  EXPECT_NE(Bytes(*values[0].ptr), Bytes(*values[1].ptr));
}

TEST_F(RecordIteratorTest, HoldsNothingAfterTheLastRecord) {
  PlantMany(1);
  RecordIterator record(store_);
  const DBDatumPtr value = record.value();
  record.Next();
  EXPECT_FALSE(record.Valid());
  EXPECT_EQ(value.ptr->refs, 2);  // held here and by the cache
}

// ---- Unreadable records ----

TEST_F(RecordIteratorTest, EndsAtAnUnreadableRecord) {
  PlantMany(5);
  GdbmWatch watch;
  watch.Fail("fetch", 3, GDBM_FILE_READ_ERROR);
  EXPECT_EQ(Walk({}).size(), 2U);
  EXPECT_EQ(walk_error_, 0);
  EXPECT_FALSE(all_read_);
}

TEST_F(RecordIteratorTest, VisitsUnreadableRecordsOnRequest) {
  PlantMany(5);
  GdbmWatch watch;
  watch.Fail("fetch", 3, GDBM_FILE_READ_ERROR);
  Numbers errors;
  RecordIterator record(store_, VisitingUnreadable());
  for (; record.Valid(); record.Next()) {
    errors.push_back(static_cast<unsigned>(record.error()));
    EXPECT_EQ(record.value().ptr == nullptr, record.error() != 0);
  }
  EXPECT_EQ(errors, (Numbers{0, 0, GDBM_FILE_READ_ERROR, 0, 0}));
  EXPECT_EQ(record.walk_error(), 0);
  EXPECT_FALSE(record.all_read());
}

TEST_F(RecordIteratorTest, UnreadableBucketHidesTheRest) {
  PlantMany(5);
  for (const WalkOptions& options :
       {WalkOptions(), VisitingUnreadable(), WalkOptions::Keys(), WalkOptions::BoundedMemory()}) {
    GdbmWatch watch;
    watch.Fail("nextkey", 3, GDBM_FILE_READ_ERROR);
    EXPECT_EQ(Walk(options).size(), 3U);
    EXPECT_EQ(walk_error_, GDBM_FILE_READ_ERROR);
    EXPECT_FALSE(all_read_);
  }
}

// ---- Files made to do harm ----

TEST_F(RecordIteratorTest, CycleEndsTheWalk) {
  PlantMany(200);
  int cycles = 0;
  for (std::size_t entry = 1; PutFirstBucketInto(entry); ++entry) {
    for (const WalkOptions& options : {WalkOptions(), WalkOptions::Keys()}) {
      int steps = 0;
      RecordIterator record(store_, options);
      for (; record.Valid() && steps < 10000; record.Next()) ++steps;
      EXPECT_LT(steps, 10000);
      EXPECT_EQ(record.all_read(), record.walk_error() == 0);
      cycles += record.walk_error() == GDBM_BAD_HASH_TABLE ? 1 : 0;
    }
  }
  EXPECT_GT(cycles, 0);
}

TEST_F(RecordIteratorTest, RecordsLongerThanTheFileEndTheWalk) {
  PlantMany(5);
  const auto file_bytes = static_cast<std::size_t>(store_.FileBytes());
  GdbmWatch watch;
  for (int i = 0; i < 5; ++i) watch.Inflate("key" + std::to_string(i), file_bytes / 3);
  EXPECT_EQ(Walk(WalkOptions::BoundedMemory()).size(), 2U);
  EXPECT_EQ(walk_error_, GDBM_BAD_HASH_TABLE);
  EXPECT_FALSE(all_read_);
  EXPECT_EQ(Walk({}).size(), 5U);
  EXPECT_TRUE(all_read_);
}

// ---- Flushes ----

TEST_F(RecordIteratorTest, NeverFlushesByDefault) {
  PlantMany(2500);
  EXPECT_EQ(FlushesOf({}), Numbers{});
  EXPECT_EQ(FlushesOf(WalkOptions::Keys()), Numbers{});
}

TEST_F(RecordIteratorTest, FlushesAfterAsManyRecordsAsThePolicySays) {
  PlantMany(20);
  EXPECT_EQ(FlushesOf(FlushingEvery(21)), Numbers{});
  EXPECT_EQ(FlushesOf(FlushingEvery(20)), Numbers{20});
  EXPECT_EQ(FlushesOf(FlushingEvery(7)), (Numbers{7, 14}));
  EXPECT_EQ(FlushesOf(FlushingEvery(1)).size(), 20U);
}

TEST_F(RecordIteratorTest, FirstFlushCanComeLater) {
  PlantMany(20);
  WalkOptions options = FlushingEvery(7);
  options.flush_policy.extra_before_first = 3;
  EXPECT_EQ(FlushesOf(options), (Numbers{10, 17}));
}

TEST_F(RecordIteratorTest, FlushesTheSecondStoreToo) {
  PlantMany(20);
  Database second;
  ASSERT_EQ(second.Open((folder_ / "second").c_str(), 1), 0);
  WalkOptions options = FlushingEvery(7);
  options.flush_policy.second_store = &second;
  EXPECT_EQ(FlushesOf(options), (Numbers{7, 7, 14, 14}));
}

TEST_F(RecordIteratorTest, BoundedMemoryFlushesEach1000RecordsAndAtTheEnd) {
  PlantMany(2500);
  EXPECT_EQ(FlushesOf(WalkOptions::BoundedMemory()), (Numbers{1000, 2000, 2501}));
}

TEST_F(RecordIteratorTest, RecordAtHandIsWrittenByTheNextFlushToo) {
  EXPECT_EQ(RepeatedWritesOf(FlushingEvery(101)), 1U);
}

TEST_F(RecordIteratorTest, RecordIsReleasedBeforeAFlushOnRequest) {
  WalkOptions options = FlushingEvery(101);
  options.releases_before_flush = true;
  EXPECT_EQ(RepeatedWritesOf(options), 0U);
}

}  // namespace
}  // namespace kestan_tests
