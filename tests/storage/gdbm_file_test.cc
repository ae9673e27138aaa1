// SPDX-License-Identifier: GPL-3.0-or-later
// What an open gdbm file and its name show, and which damage is detected beside gdbm.
#include <kestan/storage/gdbm_file.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <kestan/storage/gdbm/gdbm_header.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "tests/support/files.h"
#include "tests/support/stored_records.h"
#include "tests/support/temp_dir.h"

namespace kestan_tests {
namespace {

class GdbmFileTest : public testing::Test {
 protected:
  void SetUp() override { Plant(path_, {{"key", "value"}}); }
  void TearDown() override {
    if (file_ != nullptr) kestan::CloseFile(file_);
  }

  void Open(int flags = GDBM_WRITER) { file_ = OpenGdbm(path_, flags); }

  // Changes the header of the file, which must not be open.
  template <typename Change>
  void ChangeHeader(Change change) {
    std::string bytes = ReadFile(path_);
    kestan::gdbm::Header header{};
    std::memcpy(&header, bytes.data(), sizeof header);
    change(&header);
    std::memcpy(bytes.data(), &header, sizeof header);
    WriteFile(path_, bytes);
  }

  const TempDir folder_;
  const std::string path_ = folder_ / "file";
  GDBM_FILE file_ = nullptr;
};

TEST_F(GdbmFileTest, TheLastErrorIsGdbmsOrLackOfMemoryWhereGdbmSetsNone) {
  gdbm_errno = GDBM_ITEM_NOT_FOUND;
  EXPECT_EQ(kestan::LastError(), GDBM_ITEM_NOT_FOUND);
  gdbm_errno = GDBM_NO_ERROR;
  EXPECT_EQ(kestan::LastError(), GDBM_MALLOC_ERROR);
}

TEST_F(GdbmFileTest, TheSizeIsThatOfTheOpenFile) {
  Open(GDBM_READER);
  const auto bytes = std::filesystem::file_size(path_);
  EXPECT_EQ(kestan::BytesOfFile(file_), static_cast<std::int64_t>(bytes));
  std::filesystem::resize_file(path_, bytes + 1);
  EXPECT_EQ(kestan::BytesOfFile(file_), static_cast<std::int64_t>(bytes + 1));
}

TEST_F(GdbmFileTest, AFileLosesItsNameByRenamingRemovingAndReplacingIt) {
  Open();
  const char* const name = path_.c_str();
  EXPECT_FALSE(kestan::HasLostItsName(file_, name));
  std::filesystem::rename(path_, folder_ / "other");
  EXPECT_TRUE(kestan::HasLostItsName(file_, name));
  EXPECT_FALSE(kestan::HasLostItsName(file_, (folder_ / "other").c_str()));
  WriteFile(path_, "another file");
  EXPECT_TRUE(kestan::HasLostItsName(file_, name));
}

TEST_F(GdbmFileTest, ANameThatCannotBeLookedUpIsNotLost) {
  Open();
  const std::string too_long(5000, 'x');
  EXPECT_FALSE(kestan::HasLostItsName(file_, too_long.c_str()));
}

TEST_F(GdbmFileTest, AGoodFileHasNoDamage) {
  Open();
  EXPECT_EQ(kestan::CheckFreeSpace(file_), 0);
  EXPECT_EQ(kestan::DamageOf(file_), 0);
}

TEST_F(GdbmFileTest, TheNextBlockMayBeSomewhatPastTheEndOfTheFile) {
  const std::uint64_t most = 2 * std::filesystem::file_size(path_) + (64U << 20);
  ChangeHeader([&](kestan::gdbm::Header* header) { header->next_block = most; });
  Open();
  EXPECT_EQ(kestan::CheckFreeSpace(file_), 0);
  kestan::CloseFile(file_);
  file_ = nullptr;
  ChangeHeader([&](kestan::gdbm::Header* header) { header->next_block = most + 1; });
  Open();
  EXPECT_EQ(kestan::CheckFreeSpace(file_), GDBM_NEED_RECOVERY);
  EXPECT_EQ(kestan::DamageOf(file_), GDBM_NEED_RECOVERY);
}

TEST_F(GdbmFileTest, ADanglingListOfFreeSpaceIsDamage) {
  std::string bytes = ReadFile(path_);
  kestan::gdbm::FreeList list{};
  std::memcpy(&list, &bytes[sizeof(kestan::gdbm::Header)], sizeof list);
  list.next = 3;
  std::memcpy(&bytes[sizeof(kestan::gdbm::Header)], &list, sizeof list);
  WriteFile(path_, bytes);
  Open(GDBM_READER);
  EXPECT_NE(kestan::CheckFreeSpace(file_), 0);
  EXPECT_NE(kestan::DamageOf(file_), 0);
}

TEST_F(GdbmFileTest, ClosingGivesUpTheDescriptorAndTheLock) {
  Open();
  const int descriptor = gdbm_fdesc(file_);
  kestan::CloseFile(file_);
  file_ = nullptr;
  EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
  Open();  // throws where the file is still locked
}

}  // namespace
}  // namespace kestan_tests
