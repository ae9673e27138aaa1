// SPDX-License-Identifier: GPL-3.0-or-later
// Files of which some bytes cannot be read, and files that change while they are read. The program
// has the linker lead the library's calls of the system to the stand-ins at the end of this file.
#include <kestan/maintenance/salvage/file_reading.h>

#include <gtest/gtest.h>
#include <kestan/maintenance.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>

#include "tests/maintenance/index_files.h"

namespace kestan_maintenance {
namespace {

// What is asked about each read of `bytes` bytes at `at`, before it: the error that it has to
// report, 0 if it is to take its course.
std::function<int(std::size_t at, std::size_t bytes)> read_error;
int status_error = 0;  // the same for looking at what the file is

class FileReadingTest : public testing::Test {
 protected:
  void SetUp() override {
    for (std::size_t i = 0; i < kBytes; ++i) bytes_ += static_cast<char>(1 + i % 251);
    WriteFile(path_, bytes_);
  }

  void TearDown() override {
    read_error = {};
    status_error = 0;
  }

  // Makes reads fail that would need a byte from `begin` to `end`.
  static void Damage(std::size_t begin, std::size_t end) {
    read_error = [=](std::size_t at, std::size_t bytes) {
      return at < end && at + bytes > begin ? EIO : 0;
    };
  }

  //   Returns  the file's bytes.
  std::string Read() {
    EXPECT_EQ(kestan::ReadWholeFile(path_.c_str(), &read_, &unreadable_), 0);
    return std::string(read_.data(), read_.size());
  }

  static constexpr std::size_t kBytes = 2500000;  // the library asks for 1 MiB at once

  kestan_tests::TempDir folder_;
  const std::string path_ = folder_ / "file";
  std::string bytes_;
  kestan::String read_;
  std::uint64_t unreadable_ = 7;
};

TEST_F(FileReadingTest, AFileIsReadWhole) {
  EXPECT_EQ(Read(), bytes_);
  EXPECT_EQ(unreadable_, 0U);
}

TEST_F(FileReadingTest, SignalsAreNoErrors) {
  int signals = 0;
  read_error = [&](std::size_t, std::size_t) { return ++signals % 3 != 0 ? EINTR : 0; };
  EXPECT_EQ(Read(), bytes_);
  EXPECT_EQ(unreadable_, 0U);
  EXPECT_GT(signals, 3);
}

TEST_F(FileReadingTest, BlocksThatCannotBeReadBecomeZeros) {
  for (const std::size_t block : {std::size_t{0}, std::size_t{1024}, kBytes / 512 * 512}) {
    Damage(block, block + 1);
    std::string expected = bytes_;
    const std::size_t lost = std::min(kBlockBytes, kBytes - block);
    expected.replace(block, lost, lost, '\0');
    EXPECT_EQ(Read(), expected);
    EXPECT_EQ(unreadable_, lost);
  }
}

TEST_F(FileReadingTest, OfDamageAcrossBlocksEachIsLost) {
  Damage(1023, 1537);
  std::string expected = bytes_;
  expected.replace(512, 1536, 1536, '\0');
  EXPECT_EQ(Read(), expected);
  EXPECT_EQ(unreadable_, 1536U);
}

TEST_F(FileReadingTest, AFileThatIsCutMeanwhileEndsThere) {
  constexpr std::size_t kLeft = 1500000;
  read_error = [&](std::size_t at, std::size_t) {
    if (at != 0) std::filesystem::resize_file(path_, kLeft);
    return 0;
  };
  EXPECT_EQ(Read(), bytes_.substr(0, kLeft));
  EXPECT_EQ(unreadable_, 0U);
}

TEST_F(FileReadingTest, AFileWithoutAStatusIsAnError) {
  status_error = EIO;
  EXPECT_EQ(kestan::ReadWholeFile(path_.c_str(), &read_, &unreadable_), EIO);
}

TEST_F(FileReadingTest, AFileThatFitsNoMemoryIsAnErrorAndNoEndOfTheProcess) {
  std::error_code error;
  std::filesystem::resize_file(path_, kestan::String().max_size() / 2 + 1, error);
  if (error) GTEST_SKIP() << "no such file here: " << error.message();
  EXPECT_EQ(kestan::ReadWholeFile(path_.c_str(), &read_, &unreadable_), EFBIG);
}

TEST_F(FileReadingTest, ARepairSaysWhatItCouldNotRead) {
  MakeIndex(folder_ / "index", 100, 1);
  Damage(3 * kBlockBytes, 4 * kBlockBytes);
  std::string said;
  kestan::RepairResult result;
  const auto take = [&](std::string_view line) { said.append(line).append("\n"); };
  const std::string damaged = folder_ / "index";
  EXPECT_EQ(kestan::RepairIndex(damaged.c_str(), (folder_ / "new").c_str(), take, &result), 0);
  EXPECT_NE(said.find("note: bytes that cannot be read: 512\n"), std::string::npos);
  EXPECT_TRUE(result.was_damaged);
}

// Where nothing that counts lies, the file is damaged all the same.
TEST_F(FileReadingTest, AnUnreadableBlockOfTextIsDamage) {
  const std::string damaged = folder_ / "index";
  kestan_tests::Plant(damaged, {{"t-a", std::string(5000, 't')}});
  const std::size_t bytes = ReadFile(damaged).size();
  Damage(bytes - 1, bytes);
  kestan::RepairResult result;
  EXPECT_EQ(kestan::RepairIndex(damaged.c_str(), (folder_ / "new").c_str(), {}, &result), 0);
  EXPECT_TRUE(result.was_damaged);
}

}  // namespace

int ErrorOfRead(std::size_t at, std::size_t bytes) {
  return read_error ? read_error(at, bytes) : 0;
}

int ErrorOfStatus() { return status_error; }

}  // namespace kestan_maintenance

// The linker leads every call of NAME to __wrap_NAME, and __real_NAME to NAME.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" {

ssize_t __real_pread(int, void*, std::size_t, off_t);
int __real_fstat(int, struct stat*);

ssize_t __wrap_pread(int file, void* bytes, std::size_t count, off_t at) {
  errno = kestan_maintenance::ErrorOfRead(static_cast<std::size_t>(at), count);
  return errno != 0 ? -1 : __real_pread(file, bytes, count, at);
}

int __wrap_fstat(int file, struct stat* status) {
  errno = kestan_maintenance::ErrorOfStatus();
  return errno != 0 ? -1 : __real_fstat(file, status);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
