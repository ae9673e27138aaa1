// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/gdbm/free_list_guard.h>

#include <fcntl.h>
#include <gdbm.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan_tests {
namespace {

namespace gdbm = kestan::gdbm;
using Pieces = std::vector<gdbm::FreeSpace>;

constexpr std::int32_t kBlockBytes = 512;
constexpr gdbm::Offset kFirst = 8192;  // where the first list in the file lies
constexpr std::size_t kFileBytes = 1 << 16;

// How many pieces fit the header, and what a list in the file takes.
constexpr std::size_t kListAt = sizeof(gdbm::Header);
constexpr auto kSize = static_cast<std::int32_t>((kBlockBytes - kListAt - sizeof(gdbm::FreeList)) /
                                                 sizeof(gdbm::FreeSpace));
constexpr gdbm::Offset kStoredBytes =
    kSize * sizeof(gdbm::FreeSpace) / 2 + sizeof(gdbm::FreeList) + sizeof(gdbm::FreeSpace);
constexpr gdbm::Offset kEnd = kFirst + kStoredBytes;

// A file of nothing but a header and lists of free space.
class FreeListGuardTest : public testing::Test {
 protected:
  void SetUp() override { PutHeader(gdbm::kMagic, kListAt); }
  void TearDown() override { Close(); }

  template <typename T>
  void PutAt(gdbm::Offset at, const T& value) {
    std::memcpy(bytes_.data() + at, &value, sizeof value);
  }

  void PutHeader(std::uint32_t magic, std::size_t list_at) {
    list_at_ = list_at;
    PutAt(0, gdbm::Header{magic, kBlockBytes, 512, 512, 6, 512, 15, kFileBytes});
  }

  void PutList(gdbm::Offset at, const Pieces& pieces, gdbm::Offset next,
               std::int32_t size = kSize) {
    PutAt(at, gdbm::FreeList{size, static_cast<std::int32_t>(pieces.size()), next});
    for (std::size_t i = 0; i < pieces.size(); ++i) {
      PutAt(at + sizeof(gdbm::FreeList) + i * sizeof pieces[i], pieces[i]);
    }
  }

  // Puts a list into the header and one into the file, which is the first.
  void PutLists(const Pieces& in_header, const Pieces& in_first, gdbm::Offset next = 0) {
    PutList(list_at_, in_header, kFirst);
    PutList(kFirst, in_first, next);
  }

  // Writes what was put into the file and has it guarded.
  void Watch(int flags = O_RDWR) {
    Close();
    WriteFile(path_, bytes_);
    descriptor_ = open(path_.c_str(), flags);
    guard_.Watch(descriptor_);
  }

  // Changes the file as gdbm does while it is guarded.
  void Rewrite() const {
    ASSERT_EQ(pwrite(descriptor_, bytes_.data(), bytes_.size(), 0),
              static_cast<ssize_t>(bytes_.size()));
  }

  void Close() {
    guard_.Release();
    if (descriptor_ >= 0) close(descriptor_);
    descriptor_ = -1;
  }

  // Returns how many bytes each piece of the list at `at` has in the file now.
  std::vector<int> Sizes(gdbm::Offset at = kFirst) const {
    const std::string file = ReadFile(path_);
    gdbm::FreeList list{};
    std::memcpy(&list, file.data() + at, sizeof list);
    std::vector<int> sizes;
    for (std::int32_t i = 0; i < list.count; ++i) {
      gdbm::FreeSpace piece{};
      std::memcpy(&piece, file.data() + at + sizeof list + sizeof piece * static_cast<unsigned>(i),
                  sizeof piece);
      sizes.push_back(piece.bytes);
    }
    return sizes;
  }

  gdbm::Offset NextOfFirst() const {
    gdbm::FreeList list{};
    std::memcpy(&list, ReadFile(path_).data() + kFirst, sizeof list);
    return list.next;
  }

  // Returns whether a store is safe in the file as it was put.
  bool IsLeftAlone() {
    Watch();
    EXPECT_EQ(guard_.BeforeStore(), 0);
    return ReadFile(path_) == bytes_;
  }

  const TempDir folder_;
  const std::string path_ = folder_ / "file";
  std::string bytes_ = std::string(kFileBytes, '\0');
  std::size_t list_at_ = kListAt;
  int descriptor_ = -1;
  gdbm::FreeListGuard guard_;
};

TEST_F(FreeListGuardTest, APieceThatEndsWhereItsListLiesIsForgotten) {
  PutLists({{50, kFirst - 150}}, {{60, 2000}, {100, kFirst - 100}});
  Watch();
  EXPECT_EQ(guard_.BeforeStore(), 0);
  EXPECT_EQ(Sizes(), (std::vector<int>{60, 0}));
}

TEST_F(FreeListGuardTest, SoIsOneThatFreeSpaceOfTheHeaderParts) {
  PutLists({{30, kFirst - 30}, {40, kFirst - 70}}, {{100, kFirst - 170}});
  Watch();
  EXPECT_EQ(guard_.BeforeStore(), 0);
  EXPECT_EQ(Sizes(), std::vector<int>{0});
}

TEST_F(FreeListGuardTest, OnlyTheNearestOfAdjacentPiecesIsForgotten) {
  PutLists({}, {{100, kFirst - 100}, {200, kFirst - 300}});
  Watch();
  EXPECT_EQ(guard_.BeforeStore(), 0);
  EXPECT_EQ(Sizes(), (std::vector<int>{0, 200}));
}

TEST_F(FreeListGuardTest, AByteInUseBetweenAPieceAndItsListIsEnough) {
  PutLists({{50, kFirst - 150}}, {{99, kFirst - 100}, {100, kEnd}});
  EXPECT_TRUE(IsLeftAlone());
  PutLists({{50, kFirst - 51}}, {{99, kFirst - 150}});
  EXPECT_TRUE(IsLeftAlone());
}

TEST_F(FreeListGuardTest, FreeSpaceOfTheHeaderAloneIsNoDanger) {
  PutLists({{50, kFirst - 50}, {50, kFirst - 100}}, {{60, 2000}});
  EXPECT_TRUE(IsLeftAlone());
}

TEST_F(FreeListGuardTest, AListRightBehindTheFirstIsSkipped) {
  PutLists({{50, kFirst - 50}}, {}, kEnd);
  PutList(kEnd, {{70, 3000}}, 4096);
  PutList(4096, {}, 0);
  Watch();
  EXPECT_EQ(guard_.BeforeStore(), 0);
  EXPECT_EQ(NextOfFirst(), 4096U);
}

TEST_F(FreeListGuardTest, SoAreAllThatOnlyFreeSpaceParts) {
  PutLists({{50, kEnd}}, {{30, kEnd + 50}}, kEnd + 80);
  PutList(kEnd + 80, {}, kEnd + 50);
  PutList(kEnd + 50, {}, kEnd + 1000);
  Watch();
  EXPECT_EQ(guard_.BeforeStore(), 0);
  EXPECT_EQ(NextOfFirst(), kEnd + 1000);
}

TEST_F(FreeListGuardTest, AListFurtherBehindOrInFrontOfTheFirstStays) {
  PutLists({{50, kFirst - 50}}, {}, kEnd + 1);
  EXPECT_TRUE(IsLeftAlone());
  PutLists({{50, kEnd}}, {}, kEnd + 51);
  EXPECT_TRUE(IsLeftAlone());
  PutLists({{50, kFirst - 50}}, {}, kFirst - kStoredBytes);
  EXPECT_TRUE(IsLeftAlone());
}

TEST_F(FreeListGuardTest, AFileWithOneListIsLeftAlone) {
  PutList(kListAt, {{50, kFirst - 50}}, 0);
  EXPECT_TRUE(IsLeftAlone());
}

TEST_F(FreeListGuardTest, AListThatComesToTheFrontLaterIsLookedAtToo) {
  PutLists({}, {{60, 2000}});
  Watch();
  EXPECT_EQ(guard_.BeforeStore(), 0);
  PutList(kListAt, {}, 20000);
  PutList(20000, {{100, 19900}}, kFirst);
  Rewrite();
  EXPECT_EQ(guard_.BeforeStore(), 0);
  EXPECT_EQ(Sizes(20000), std::vector<int>{0});
}

TEST_F(FreeListGuardTest, SoIsAnotherInTheSamePlaceBeforeItIsTakenBack) {
  PutLists({}, {{60, 2000}});
  Watch();
  EXPECT_EQ(guard_.BeforeStore(), 0);
  PutLists(Pieces(kSize / 2, {30, 3000}), {{100, kFirst - 100}});
  Rewrite();
  EXPECT_EQ(guard_.BeforeStore(), 0);
  EXPECT_EQ(Sizes(), std::vector<int>{0});
}

TEST_F(FreeListGuardTest, FreeSpaceThatComesIntoTheHeaderLaterCounts) {
  PutLists({}, {{100, kFirst - 150}});
  Watch();
  EXPECT_EQ(guard_.BeforeStore(), 0);
  EXPECT_EQ(Sizes(), std::vector<int>{100});
  Pieces many(kSize, {30, 3000});
  many.back() = {50, kFirst - 50};
  PutLists(many, {{100, kFirst - 150}});
  Rewrite();
  EXPECT_EQ(guard_.BeforeStore(), 0);
  EXPECT_EQ(Sizes(), std::vector<int>{0});
}

TEST_F(FreeListGuardTest, TheExtendedFormatHasItsListFurtherBack) {
  PutHeader(gdbm::kExtendedMagic, kListAt + gdbm::kExtensionBytes);
  constexpr std::size_t kLost = gdbm::kExtensionBytes + sizeof(gdbm::FreeSpace) - 1;
  const std::int32_t size = kSize - static_cast<std::int32_t>(kLost / sizeof(gdbm::FreeSpace));
  PutList(list_at_, {{50, kFirst - 150}}, kFirst, size);
  PutList(kFirst, {{100, kFirst - 100}}, 0, size);
  Watch();
  EXPECT_EQ(guard_.BeforeStore(), 0);
  EXPECT_EQ(Sizes(), std::vector<int>{0});
}

TEST_F(FreeListGuardTest, DamagedListsAreLeftToGdbm) {
  const Pieces piece = {{100, kFirst - 100}};
  for (const std::int32_t size : {-1, 0, kSize + 1, 1 << 30}) {
    PutLists({}, piece);
    PutList(kListAt, {}, kFirst, size);
    EXPECT_TRUE(IsLeftAlone()) << size;
  }
  for (const std::int32_t count : {-1, kSize + 1}) {
    PutLists({}, piece);
    PutAt(kListAt, gdbm::FreeList{kSize, count, kFirst});
    EXPECT_TRUE(IsLeftAlone()) << count;
  }
  for (const std::int32_t count : {-1, kSize, 1 << 30}) {
    PutLists({}, piece);
    PutAt(kFirst, gdbm::FreeList{kSize, count, 0});
    EXPECT_TRUE(IsLeftAlone()) << count;
  }
  for (const gdbm::Offset next : {gdbm::Offset{kFileBytes - 1}, ~gdbm::Offset{0}}) {
    PutList(kListAt, {}, next);
    EXPECT_TRUE(IsLeftAlone()) << next;
  }
}

TEST_F(FreeListGuardTest, PiecesOfImpossibleSizesEndNowhere) {
  PutLists({{0, kFirst}, {-5, kFirst + 5}}, {{0, kFirst}, {-9, kFirst + 9}, {1, ~gdbm::Offset{0}}});
  EXPECT_TRUE(IsLeftAlone());
}

TEST_F(FreeListGuardTest, AHeaderOfImpossibleSizeIsNotGuarded) {
  for (const std::int32_t bytes : {-1, 0, 40, (1 << 20) + 1}) {
    PutLists({}, {{100, kFirst - 100}});
    PutAt(offsetof(gdbm::Header, block_bytes), bytes);
    EXPECT_TRUE(IsLeftAlone()) << bytes;
  }
}

TEST_F(FreeListGuardTest, AListThatCannotBeChangedKeepsTheStoreFromBeingTried) {
  PutLists({}, {{100, kFirst - 100}});
  Watch(O_RDONLY);
  EXPECT_EQ(guard_.BeforeStore(), GDBM_FILE_WRITE_ERROR);
  EXPECT_EQ(guard_.BeforeStore(), GDBM_FILE_WRITE_ERROR);
  PutLists({}, {}, kEnd);
  Watch(O_RDONLY);
  EXPECT_EQ(guard_.BeforeStore(), GDBM_FILE_WRITE_ERROR);
}

TEST_F(FreeListGuardTest, WithoutAFileThereIsNothingToDo) {
  EXPECT_EQ(guard_.BeforeStore(), 0);
  PutLists({}, {{100, kFirst - 100}});
  Watch();
  guard_.Release();
  EXPECT_EQ(guard_.BeforeStore(), 0);
  EXPECT_EQ(ReadFile(path_), bytes_);
}

}  // namespace
}  // namespace kestan_tests
