// SPDX-License-Identifier: GPL-3.0-or-later
// Files that were damaged at random, and files made to harm whoever reads them: a repair ends, and
// what it makes is an index. For more random files than the default:
//   KESTAN_REPAIR_FLIPS=20000 repair_tests --gtest_filter='RepairOfHostileFiles.*'
#include <gtest/gtest.h>
#include <kestan/maintenance.h>
#include <kestan/maintenance/salvage/gdbm_layout.h>
#include <kestan/maintenance/salvage/salvage.h>

#include <climits>
#include <cstring>
#include <filesystem>

#include "tests/maintenance/index_files.h"
#include "tests/maintenance/maintenance_test.h"
#include "tests/support/environment.h"

namespace kestan_maintenance {
namespace {

namespace gdbm = kestan::gdbm;

class RepairOfHostileFilesTest : public testing::Test {
 protected:
  void SetUp() override { MakeIndex(folder_ / "good", 40, 3); }

  static int Rounds(int count) {
    return kestan_tests::NumberFromEnvironment("KESTAN_REPAIR_FLIPS", count);
  }

  std::string Good() const { return ReadFile(folder_ / "good"); }

  // Repairs a file of these bytes. If that makes an index, it is a valid one.
  //   Returns  what RepairIndex() returned.
  int Repair(const std::string& bytes) {
    const std::string damaged = folder_ / "damaged";
    const std::string repaired = folder_ / "repaired";
    WriteFile(damaged, bytes);
    std::filesystem::remove(repaired);
    const int error = kestan::RepairIndex(damaged.c_str(), repaired.c_str(), {}, &result_);
    EXPECT_EQ(std::filesystem::exists(repaired), error == 0);
    if (error == 0) ExpectValid(repaired);
    return error;
  }

  static void ExpectValid(const std::string& path) {
    EXPECT_EQ(kestan_tests::FaultsOf(path), kestan_tests::Lines());
  }

  template <typename Structure>
  static void Put(std::string* file, std::size_t at, const Structure& structure) {
    std::memcpy(&file->at(at), &structure, sizeof structure);
  }

  static gdbm::Header HeaderOf(const std::string& file) {
    gdbm::Header header;
    std::memcpy(&header, file.data(), sizeof header);
    return header;
  }

  // A header with a directory of 64 entries at 512, and `bytes` bytes.
  static std::string Frame(std::size_t bytes) {
    std::string file(bytes, '\0');
    Put(&file, 0, gdbm::Header{gdbm::kMagic, 512, 512, 512, 6, 512, 16, bytes});
    return file;
  }

  kestan_tests::TempDir folder_;
  kestan::RepairResult result_;
  Dice dice_{11};
};

TEST_F(RepairOfHostileFilesTest, BytesChangedAtRandom) {
  const std::string good = Good();
  for (int round = 0; round < Rounds(100); ++round) {
    std::string bytes = good;
    for (std::size_t left = 1 + dice_.Below(60); left > 0; --left) {
      bytes[dice_.Below(bytes.size())] = dice_.Byte();
    }
    EXPECT_EQ(Repair(bytes), 0);
  }
}

TEST_F(RepairOfHostileFilesTest, BytesOfTheHeaderChangedAtRandom) {
  const std::string good = Good();
  for (int round = 0; round < Rounds(60); ++round) {
    std::string bytes = good;
    for (std::size_t left = 1 + dice_.Below(4); left > 0; --left) {
      bytes[dice_.Below(sizeof(gdbm::Header) + 60)] = dice_.Byte();
    }
    EXPECT_EQ(Repair(bytes), 0);
    EXPECT_EQ(result_.lost + result_.words_missing, 0U);
  }
}

TEST_F(RepairOfHostileFilesTest, BlocksMovedCutAndRepeated) {
  const std::string good = Good();
  for (int round = 0; round < Rounds(60); ++round) {
    std::string bytes = good;
    for (std::size_t left = dice_.Below(6); left > 0; --left) {
      const std::string block = good.substr(dice_.Below(good.size()), dice_.Below(3000));
      bytes.replace(dice_.Below(bytes.size()), dice_.Below(2) * block.size(), block);
    }
    if (round % 3 == 0) bytes.resize(dice_.Below(bytes.size()));
    Repair(bytes);
  }
}

TEST_F(RepairOfHostileFilesTest, NoiseAfterAGoodHeader) {
  for (int round = 0; round < Rounds(20); ++round) {
    std::string bytes = Good();
    const std::size_t first = sizeof(gdbm::Header) + dice_.Below(2000);
    for (std::size_t i = first; i < bytes.size(); ++i) bytes[i] = dice_.Byte();
    Repair(bytes);
  }
}

TEST_F(RepairOfHostileFilesTest, HeadersOfExtremes) {
  const std::string good = Good();
  for (const std::int64_t extreme : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{INT_MAX},
                                     std::int64_t{INT_MIN}, std::int64_t{1} << 62}) {
    for (std::size_t at = 4; at < sizeof(gdbm::Header); at += 4) {
      std::string bytes = good;
      Put(&bytes, at, static_cast<std::int32_t>(extreme));
      EXPECT_EQ(Repair(bytes), 0);
      EXPECT_EQ(result_.lost + result_.words_missing, 0U);
    }
    std::string bytes = good;
    gdbm::Header header = HeaderOf(good);
    header.directory = static_cast<gdbm::Offset>(extreme);
    Put(&bytes, 0, header);
    EXPECT_EQ(Repair(bytes), 0);
  }
}

TEST_F(RepairOfHostileFilesTest, BucketsOfExtremes) {
  const std::string good = Good();
  gdbm::Offset first_bucket = 0;
  std::memcpy(&first_bucket, &good[InMemory(HeaderOf(good).directory)], sizeof first_bucket);
  const std::size_t bucket = InMemory(first_bucket);
  for (const std::int32_t extreme : {0, -1, 1, 31, 32, INT_MAX, INT_MIN}) {
    for (std::size_t at = bucket; at < bucket + 512; at += 20) {
      std::string bytes = good;
      Put(&bytes, at, extreme);
      EXPECT_EQ(Repair(bytes), 0);
    }
  }
}

TEST_F(RepairOfHostileFilesTest, CyclicListsOfFreeSpace) {
  std::string bytes = Good();
  const std::size_t list = sizeof(gdbm::Header);
  Put(&bytes, list, gdbm::FreeList{INT_MAX, INT_MAX, list});
  bytes.replace(InMemory(HeaderOf(bytes).directory), 100, 100, '\0');
  EXPECT_EQ(Repair(bytes), 0);
  Put(&bytes, list, gdbm::FreeList{INT_MAX, 0, list});
  EXPECT_EQ(Repair(bytes), 0);
}

TEST_F(RepairOfHostileFilesTest, ADirectoryThatLeadsToItself) {
  std::string bytes = Frame(4096);
  for (std::size_t i = 0; i < 64; ++i) Put(&bytes, 512 + i * 8, gdbm::Offset{512});
  EXPECT_EQ(Repair(bytes), -1);
}

TEST_F(RepairOfHostileFilesTest, RecordsThatOverlapFillNoDisk) {
  constexpr std::size_t kBuckets = 2000;
  constexpr std::size_t kText = 1024 + kBuckets * 512;
  std::string bytes = Frame(kText + 100000);
  for (std::size_t i = kText; i < bytes.size(); ++i) bytes[i] = 'a';
  for (std::size_t i = 0; i < kBuckets; ++i) {
    for (std::uint32_t k = 0; k < 16; ++k) {
      const auto length = static_cast<std::int32_t>(1 + i * 16 + k);
      const std::string key(static_cast<std::size_t>(length), 'a');
      const auto hash = static_cast<std::int32_t>(gdbm::HashOf(key));
      Put(&bytes, InMemory(gdbm::ElementAt(1024 + i * 512, k)),
          gdbm::Element{hash, {'a', 'a', 'a', 'a'}, kText, length, 60000});
    }
  }
  EXPECT_EQ(Repair(bytes), 0);
  EXPECT_LT(std::filesystem::file_size(folder_ / "repaired"), 3 * bytes.size());
}

TEST_F(RepairOfHostileFilesTest, AnIndexInATextIsNotTakenForTheIndex) {
  const std::string inner = Good();
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex((folder_ / "outer").c_str(), 1), 0);
    engine.AddDocumentWords("only", "one document");
    engine.CloseIndex();
  }
  kestan_tests::Plant(folder_ / "outer", {{"u-only", inner}});
  ASSERT_EQ(Repair(ReadFile(folder_ / "outer")), 0);
  EXPECT_EQ(kestan_tests::Dump(folder_ / "repaired"), kestan_tests::Dump(folder_ / "outer"));
}

}  // namespace
}  // namespace kestan_maintenance
