// SPDX-License-Identifier: GPL-3.0-or-later
// Damaged files that gdbm itself would come to grief on.
#include <gdbm.h>

#include <cstring>
#include <fstream>
#include <functional>
#include <sstream>

#include "tests/storage/database_test.h"

namespace kestan_tests {
namespace {

constexpr std::size_t kPlaceOfDirectory = 8;  // in gdbm's header
constexpr std::size_t kPlaceOfDirectoryBytes = 16;
constexpr std::size_t kEntryBytes = 8;  // of the directory
constexpr std::size_t kPlaceOfNextBlock = 32;
constexpr std::size_t kPlaceOfFreeSpaceList = 48;

using Action = std::function<void(const DBDatum& key)>;

class DamagedFileTest : public testing::Test {
 protected:
  void SetUp() override {
    Records records;
    for (int i = 0; i < 200; ++i) records["key" + std::to_string(i)] = "value";
    Plant(path_, records);
    bytes_ = Read();
  }

  std::string Read() {
    std::ifstream file(path_, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
  }

  std::uint64_t NumberAt(std::size_t place) {
    std::uint64_t number = 0;
    std::memcpy(&number, bytes_.data() + place, sizeof number);
    return number;
  }

  void SetNumberAt(std::size_t place, std::uint64_t number) {
    std::memcpy(bytes_.data() + place, &number, sizeof number);
    std::ofstream(path_, std::ios::binary) << bytes_;
  }

  // Returns how many keys a walk comes to, at most `most`. Does `in_each_step` after each of them.
  int Walk(
      int most, const Action& in_each_step = [](const DBDatum&) {}) {
    DBDatumPtr key;
    int count = 0;
    for (int end = store_.First(&key); end == 0 && count < most; end = store_.Next(&key)) {
      in_each_step(*key.ptr);
      ++count;
    }
    return count;
  }

  // Puts buckets of the file in places of its directory where they do not belong, one at a time,
  // and walks over it each time. No walk may go on for ever.
  //   Returns  how many of them would have.
  int CountCycles(int writer, const Action& in_each_step) {
    const auto directory = static_cast<std::size_t>(NumberAt(kPlaceOfDirectory));
    const std::size_t entries =
        static_cast<std::uint32_t>(NumberAt(kPlaceOfDirectoryBytes)) / kEntryBytes;
    const std::string good = bytes_;
    int cycles = 0;
    for (std::size_t to = 0; to < entries; ++to) {
      for (const std::size_t from : {std::size_t{0}, (to + 1) % entries}) {
        bytes_ = good;
        SetNumberAt(directory + to * kEntryBytes, NumberAt(directory + from * kEntryBytes));
        if (store_.Open(path_.c_str(), writer) != 0) continue;
        EXPECT_LT(Walk(10000, in_each_step), 10000);
        cycles += store_.WalkError() == GDBM_BAD_HASH_TABLE ? 1 : 0;
        store_.Close();
      }
    }
    return cycles;
  }

  void ExpectReadOnly() {
    EXPECT_GT(store_.Open(path_.c_str(), 1), 0);
    EXPECT_EQ(Read(), bytes_);
    ASSERT_EQ(store_.Open(path_.c_str(), 0), 0);
    EXPECT_EQ(Walk(1000), 200);
    EXPECT_EQ(store_.WalkError(), 0);
    EXPECT_NE(store_.Verify(), 0);
  }

  TempDir folder_;
  const std::string path_ = folder_ / "store";
  std::string bytes_;
  Database store_;
};

TEST_F(DamagedFileTest, WithItsNextBlockFarAwayOpensForReadingOnly) {
  SetNumberAt(kPlaceOfNextBlock, std::uint64_t{1} << 40);
  ExpectReadOnly();
}

// gdbm's extended format begins with the same fields.
TEST_F(DamagedFileTest, OfTheExtendedFormatIsRefusedInTheSameWay) {
  GDBM_FILE file = gdbm_open(path_.c_str(), 512, GDBM_NEWDB | GDBM_NUMSYNC, 0644, nullptr);
  ASSERT_NE(file, nullptr) << gdbm_strerror(gdbm_errno);
  gdbm_close(file);
  EXPECT_EQ(store_.Open(path_.c_str(), 1), 0);
  store_.Close();
  bytes_ = Read();
  SetNumberAt(kPlaceOfNextBlock, std::uint64_t{1} << 40);
  EXPECT_EQ(store_.Open(path_.c_str(), 1), GDBM_NEED_RECOVERY);
}

// An older format may have other fields there.
TEST_F(DamagedFileTest, OfAnotherFormatIsLeftToGdbm) {
  constexpr std::uint32_t kOldMagic = 0x13579ace;
  std::memcpy(bytes_.data(), &kOldMagic, sizeof kOldMagic);
  SetNumberAt(kPlaceOfNextBlock, std::uint64_t{1} << 40);
  EXPECT_EQ(store_.Open(path_.c_str(), 1), 0);
}

TEST_F(DamagedFileTest, WithItsNextBlockALittleAwayOpensForWriting) {
  SetNumberAt(kPlaceOfNextBlock, NumberAt(kPlaceOfNextBlock) + 4096);
  EXPECT_EQ(store_.Open(path_.c_str(), 1), 0);
  EXPECT_EQ(store_.Put(Datum("new"), Datum("value")), 0);
}

TEST_F(DamagedFileTest, WithItsFreeSpaceListElsewhereOpensForReadingOnly) {
  SetNumberAt(kPlaceOfFreeSpaceList, 100000007);
  ExpectReadOnly();
}

// As a process leaves it that was killed while gdbm lengthened the file.
TEST_F(DamagedFileTest, LongerThanItsHeaderSaysIsLeftToGdbmToRecover) {
  bytes_.append(4096, '\0');
  std::ofstream(path_, std::ios::binary) << bytes_;
  EXPECT_EQ(store_.Open(path_.c_str(), 1), GDBM_NEED_RECOVERY);
  EXPECT_EQ(Read(), bytes_);

  GDBM_FILE file = gdbm_open(path_.c_str(), 0, GDBM_WRITER, 0, nullptr);  // nobody locks it
  ASSERT_NE(file, nullptr) << gdbm_strerror(gdbm_errno);
  EXPECT_EQ(gdbm_recover(file, nullptr, 0), 0);
  gdbm_close(file);
  EXPECT_EQ(store_.Open(path_.c_str(), 1), 0);
  EXPECT_EQ(Walk(1000), 200);
}

// Some buckets in a wrong place gdbm notices itself; of others it comes to the same keys for ever.
TEST_F(DamagedFileTest, WithABucketInTwoPlacesIsNotWalkedForEver) {
  EXPECT_GT(CountCycles(0, [](const DBDatum&) {}), 0);
}

TEST_F(DamagedFileTest, IsNotWalkedForEverByOneWhoWritesInEachStep) {
  EXPECT_GT(CountCycles(1, [&](const DBDatum& key) { store_.Put(key, Datum("other")); }), 0);
}

// Stored by each flush of the walk, the record keeps the file changing.
TEST_F(DamagedFileTest, IsNotWalkedForEverByOneWhoFlushesAHeldRecordInEachStep) {
  const DBDatumPtr held = Counted("value");
  const auto flush = [&](const DBDatum&) {
    store_.Put(Datum("held"), *held.ptr);
    held.ptr->dirty = true;
    store_.Flush();
  };
  StandardErrorOf([&] { EXPECT_GT(CountCycles(1, flush), 0); });  // gdbm refuses some files
}

TEST_F(DamagedFileTest, IsNotWalkedForEverByOneWhoAddsAndDeletesARecordInEachStep) {
  const auto come_and_go = [&](const DBDatum&) {
    store_.Put(Datum("new"), Datum("value"));
    store_.Del(Datum("new"));
  };
  EXPECT_GT(CountCycles(1, come_and_go), 0);
}

TEST_F(DamagedFileTest, WithADanglingDirectoryIsFoundDamagedOnceItIsUsed) {
  const auto directory = static_cast<std::size_t>(NumberAt(kPlaceOfDirectory));
  SetNumberAt(directory, std::uint64_t{1} << 40);
  ASSERT_EQ(store_.Open(path_.c_str(), 0), 0);
  EXPECT_LT(Walk(1000), 200);
  EXPECT_EQ(store_.Verify(), GDBM_NEED_RECOVERY);
  EXPECT_NE(store_.FileError(), 0);
}

TEST_F(DamagedFileTest, ThatIsWholeAfterAllIsWalkedWhileKeysComeAndGo) {
  ASSERT_EQ(store_.Open(path_.c_str(), 1), 0);
  DBDatumPtr key;
  int count = 0;
  for (int end = store_.First(&key); end == 0; end = store_.Next(&key)) {
    const std::string name = "more" + std::to_string(count++);
    store_.Put(Datum(name), Datum("value"));
    store_.Del(Datum(name));
  }
  EXPECT_EQ(count, 200);
  EXPECT_EQ(store_.WalkError(), 0);
}

}  // namespace
}  // namespace kestan_tests
