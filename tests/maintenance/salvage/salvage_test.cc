// SPDX-License-Identifier: GPL-3.0-or-later
// What a salvage finds in whole files, and what it still finds in damaged ones.
#include <kestan/maintenance/salvage/salvage.h>

#include <gtest/gtest.h>
#include <kestan/maintenance/salvage/gdbm_layout.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <filesystem>

#include "tests/maintenance/index_files.h"

namespace kestan_maintenance {
namespace {

using kestan_tests::Dump;
using kestan_tests::Records;

class SalvageTest : public testing::Test {
 protected:
  // Stores records of every size under plain keys.
  void Store(int first, int last, std::size_t largest, int flags = 0) {
    GDBM_FILE file = gdbm_open(path_.c_str(), block_bytes_, GDBM_WRCREAT | flags, 0644, nullptr);
    ASSERT_NE(file, nullptr);
    for (int i = first; i < last; ++i) {
      const std::string key = "key\xe9 " + std::to_string(i);
      const std::string value(dice_.Below(largest + 1), static_cast<char>(i));
      ASSERT_EQ(gdbm_store(file, Of(key), Of(value), GDBM_REPLACE), 0);
    }
    gdbm_close(file);
  }

  void Delete(int first, int last) {
    GDBM_FILE file = gdbm_open(path_.c_str(), 512, GDBM_WRITER, 0644, nullptr);
    ASSERT_NE(file, nullptr);
    for (int i = first; i < last; ++i) gdbm_delete(file, Of("key\xe9 " + std::to_string(i)));
    gdbm_close(file);
  }

  static datum Of(const std::string& text) {
    return {const_cast<char*>(text.data()), static_cast<int>(text.size())};
  }

  // Writes `byte` over part of the file.
  void Overwrite(std::size_t at, std::size_t bytes, char byte) {
    std::string file = ReadFile(path_);
    file.replace(at, std::min(bytes, file.size() - at), std::min(bytes, file.size() - at), byte);
    WriteFile(path_, file);
  }

  std::size_t PlaceOf(Place place) const {
    const FileMap map = MapOf(ReadFile(path_));
    const auto found = std::find(map.places.begin(), map.places.end(), place);
    return static_cast<std::size_t>(found - map.places.begin());
  }

  kestan_tests::TempDir folder_;
  const std::string path_ = folder_ / "file";
  Dice dice_{1};
  int block_bytes_ = 512;
};

TEST_F(SalvageTest, AnEmptyFileOfRecordsHoldsNone) {
  Store(0, 0, 0);
  EXPECT_TRUE(Salvaged(path_).empty());
}

TEST_F(SalvageTest, FindsTheRecordsOfASmallFile) {
  Store(0, 5, 20);
  EXPECT_EQ(Salvaged(path_), Dump(path_));
}

TEST_F(SalvageTest, FindsTheRecordsOfAFileWhoseBucketsHaveSplitManyTimes) {
  Store(0, 20000, 20);
  EXPECT_EQ(Salvaged(path_), Dump(path_));
}

TEST_F(SalvageTest, FindsLargeRecords) {
  Store(0, 50, 200000);
  EXPECT_EQ(Salvaged(path_), Dump(path_));
}

TEST_F(SalvageTest, FindsEmptyKeysAndEmptyValues) {
  kestan_tests::Plant(path_, {{"", "value"}, {"key", ""}});
  EXPECT_EQ(Salvaged(path_), Dump(path_));
}

TEST_F(SalvageTest, FindsTheRecordsOfTheExtendedFormat) {
  Store(0, 2000, 100, GDBM_NUMSYNC);
  EXPECT_EQ(Salvaged(path_), Dump(path_));
}

TEST_F(SalvageTest, RemovedAndOverwrittenRecordsDoNotComeBack) {
  for (int round = 0; round < 10; ++round) {
    Store(round * 100, round * 100 + 1000, 60);
    Delete(round * 150, round * 150 + 400);
    EXPECT_EQ(Salvaged(path_), Dump(path_));
  }
}

TEST_F(SalvageTest, FindsTheRecordsOfIndexes) {
  for (unsigned seed = 0; seed < 6; ++seed) {
    const std::string index = folder_ / ("index" + std::to_string(seed));
    MakeIndex(index, 20 + 60 * static_cast<int>(seed), seed);
    EXPECT_EQ(Salvaged(index), Dump(index));
  }
}

TEST_F(SalvageTest, TheBytesOfTheFileStayAsTheyAre) {
  Store(0, 500, 20);
  const std::string before = ReadFile(path_);
  Salvaged(path_);
  EXPECT_EQ(ReadFile(path_), before);
}

TEST_F(SalvageTest, AFileThatIsNotThereIsAnError) {
  kestan::Salvage salvage;
  EXPECT_EQ(salvage.Read((folder_ / "none").c_str()), ENOENT);
}

TEST_F(SalvageTest, AFolderIsAnError) {
  kestan::Salvage salvage;
  EXPECT_EQ(salvage.Read((folder_ / "").c_str()), EINVAL);
}

TEST_F(SalvageTest, FindsEverythingWithoutTheHeader) {
  Store(0, 3000, 40);
  const Records records = Dump(path_);
  Overwrite(0, kBlockBytes, '\0');
  EXPECT_EQ(Salvaged(path_), records);
}

TEST_F(SalvageTest, ReportsWhatOfTheFileIsDamaged) {
  Store(0, 300, 40);
  const std::string good = ReadFile(path_);
  const auto damage_of = [&](Place place, std::size_t bytes) {
    WriteFile(path_, good);
    if (bytes != 0) Overwrite(PlaceOf(place), bytes, '\x7f');
    kestan::Salvage salvage;
    EXPECT_EQ(salvage.Read(path_.c_str()), 0);
    return salvage.damage();
  };
  EXPECT_FALSE(damage_of(Place::kHeader, 0).IsAny());
  EXPECT_TRUE(damage_of(Place::kHeader, 16).header);
  for (const Place place : {Place::kDirectory, Place::kBucket}) {
    const kestan::Salvage::Damage damage = damage_of(place, 200);
    EXPECT_FALSE(damage.header);
    EXPECT_TRUE(damage.directory);
    EXPECT_TRUE(damage.IsAny());
  }
}

TEST_F(SalvageTest, FindsEverythingWithoutTheDirectory) {
  Store(0, 3000, 40);
  const Records records = Dump(path_);
  const std::size_t directory = PlaceOf(Place::kDirectory);
  for (const char byte : {'\x7f', '\0'}) {
    Overwrite(directory, 8 * kBlockBytes, byte);
    EXPECT_EQ(Salvaged(path_), records);
  }
}

TEST_F(SalvageTest, AnEntryThatLeadsIntoTheMiddleOfABucketHidesNothing) {
  Store(0, 3000, 40);
  const Records records = Dump(path_);
  const std::string good = ReadFile(path_);
  const std::size_t directory = PlaceOf(Place::kDirectory);
  for (std::size_t entry = 0; entry < 256; entry += 5) {
    for (const int elements : {1, 3, -1}) {
      std::string bytes = good;
      std::int64_t at = 0;
      std::memcpy(&at, &bytes.at(directory + entry * sizeof at), sizeof at);
      at += elements * 24;
      std::memcpy(&bytes.at(directory + entry * sizeof at), &at, sizeof at);
      WriteFile(path_, bytes);
      EXPECT_EQ(Salvaged(path_), records) << entry;
    }
  }
}

TEST_F(SalvageTest, FindsEverythingWithoutHeaderAndDirectory) {
  Store(0, 3000, 40);
  const Records records = Dump(path_);
  Overwrite(PlaceOf(Place::kDirectory), 8 * kBlockBytes, '\0');
  Overwrite(0, kBlockBytes, '\0');
  EXPECT_EQ(Salvaged(path_), records);
}

TEST_F(SalvageTest, OldRecordsStayAwayWithoutTheHeader) {
  for (unsigned seed = 0; seed < 12; ++seed) {
    const std::string index = folder_ / ("index" + std::to_string(seed));
    MakeIndex(index, 10 + 30 * static_cast<int>(seed), seed);
    const Records records = Dump(index);
    std::string bytes = ReadFile(index);
    bytes.replace(0, kBlockBytes, kBlockBytes, '\0');
    WriteFile(index, bytes);
    EXPECT_EQ(Salvaged(index), records) << seed;
  }
}

// A bucket without elements is not to be seen without the directory, and what lay there before its
// last split may stand in for it. That is why such records are marked.
TEST_F(SalvageTest, OldRecordsAreMarkedWithoutTheDirectory) {
  for (unsigned seed = 0; seed < 12; ++seed) {
    std::filesystem::remove(path_);
    dice_ = Dice(seed);
    Store(0, 800, 40);
    Delete(100, 700);
    const Records records = Dump(path_);
    Overwrite(PlaceOf(Place::kDirectory), 2 * kBlockBytes, '\0');
    kestan::Salvage salvage;
    ASSERT_EQ(salvage.Read(path_.c_str()), 0);
    Records current;
    for (const kestan::SalvagedRecord& record : salvage.records()) {
      const std::string key(salvage.KeyOf(record));
      if (record.is_current) current[key] = std::string(salvage.ValueOf(record));
    }
    EXPECT_EQ(current, records);
  }
}

TEST_F(SalvageTest, ADamagedBucketTakesNoOtherRecordsWithIt) {
  Store(0, 3000, 40);
  const Records records = Dump(path_);
  const std::string good = ReadFile(path_);
  const FileMap map = MapOf(good);
  for (std::size_t i = 0; i < map.records.size(); i += 97) {
    const std::size_t hit = map.records[i].element / kBlockBytes * kBlockBytes;
    Overwrite(hit, kBlockBytes, '\0');
    const Records found = Salvaged(path_);
    for (const Record& record : map.records) {
      const bool is_hit = (record.element + 24 > hit && record.element < hit + kBlockBytes) ||
                          (record.data + record.key.size() + record.value.size() > hit &&
                           record.data < hit + kBlockBytes);
      if (is_hit) continue;
      ASSERT_EQ(found.count(record.key), 1U) << record.key;
      EXPECT_EQ(found.at(record.key), record.value);
    }
    WriteFile(path_, good);
  }
}

TEST_F(SalvageTest, FindsTheRecordsOfAFileOfLargeBlocksWithoutItsDirectory) {
  block_bytes_ = 1024;
  Store(0, 3000, 40);
  const Records records = Dump(path_);
  EXPECT_EQ(Salvaged(path_), records);
  Overwrite(PlaceOf(Place::kDirectory), 2 * kBlockBytes, '\0');
  EXPECT_EQ(Salvaged(path_), records);
}

// Its bucket has no head, and nothing shows that the record is the newest of its key.
TEST_F(SalvageTest, AnOldRecordThatRunsIntoANewerOneIsLeftOut) {
  Store(0, 800, 40);
  const Records good = Dump(path_);
  std::string bytes = ReadFile(path_);
  const FileMap map = MapOf(bytes);
  const std::size_t directory = PlaceOf(Place::kDirectory);
  const std::size_t bucket = map.records[5].element / kBlockBytes * kBlockBytes;
  const Record* last = nullptr;
  for (const Record& record : map.records) {
    const bool is_in_bucket = record.element / kBlockBytes * kBlockBytes == bucket;
    if (is_in_bucket && (last == nullptr || record.data < last->data)) last = &record;
  }
  bytes.replace(bucket, sizeof(kestan::gdbm::BucketHead), sizeof(kestan::gdbm::BucketHead), '\x7f');
  const auto too_many = static_cast<std::int32_t>(bytes.size() / 2);
  std::memcpy(&bytes.at(last->element + offsetof(kestan::gdbm::Element, value_bytes)), &too_many,
              sizeof too_many);
  WriteFile(path_, bytes);
  Overwrite(directory, 2 * kBlockBytes, '\0');
  const Records found = Salvaged(path_);
  // A bucket of former times may know the record as it was, which depends on the width.
  const auto kept = found.find(last->key);
  EXPECT_TRUE(kept == found.end() || kept->second == good.at(last->key));
  if (sizeof(void*) == 8) {
    EXPECT_EQ(found.count(last->key), 0U);
  }
  for (const Record& record : map.records) {
    if (&record == last) continue;
    EXPECT_EQ(found.count(record.key), 1U) << record.key;
  }
}

TEST_F(SalvageTest, FindsWhatACutFileStillHolds) {
  Store(0, 1000, 40);
  const Records records = Dump(path_);
  const std::string good = ReadFile(path_);
  const FileMap map = MapOf(good);
  for (std::size_t cut = 1000; cut < good.size(); cut += 9999) {
    WriteFile(path_, good.substr(0, cut));
    const Records found = Salvaged(path_);
    int parts = 0;
    for (const Record& record : map.records) {
      const bool is_whole = record.element + 24 <= cut &&
                            record.data + record.key.size() + record.value.size() <= cut;
      if (!is_whole) continue;
      EXPECT_EQ(found.count(record.key), 1U) << record.key;
    }
    for (const auto& [key, value] : found) {
      ASSERT_EQ(records.count(key), 1U) << key;
      EXPECT_EQ(records.at(key).substr(0, value.size()), value);
      parts += value.size() < records.at(key).size() ? 1 : 0;
    }
    EXPECT_LE(parts, 1) << cut;  // the record in which the file ends
  }
}

}  // namespace
}  // namespace kestan_maintenance
