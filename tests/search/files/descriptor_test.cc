// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/files/descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <string>
#include <utility>

#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using kestan_tests::TempDir;
using kestan_tests::WriteFile;

TEST(DescriptorTest, ErrorsSpeakAsTheSystemDoesAndNameTheFile) {
  const Status status = SystemError(ENOSPC, "a/b");
  EXPECT_EQ(status.code(), StatusCode::kSystem);
  EXPECT_EQ(status.ToString(), "a/b: No space left on device");
  EXPECT_EQ(SystemError(ENOENT, "").code(), StatusCode::kNotFound);
  EXPECT_EQ(SystemError(ENOMEM, "").code(), StatusCode::kOutOfMemory);
}

TEST(DescriptorTest, IsClosedOnceAndMovesAway) {
  const TempDir dir;
  Descriptor first = OpenFile(dir / "a", O_WRONLY | O_CREAT, 0600);
  ASSERT_TRUE(first.is_open());
  const int number = first.number();
  Descriptor second = std::move(first);
  EXPECT_EQ(second.number(), number);
  EXPECT_EQ(second.Close(), 0);
  EXPECT_EQ(second.Close(), 0);
  EXPECT_EQ(fcntl(number, F_GETFD), -1);
}

TEST(DescriptorTest, ReadsAreFullUpToTheEndOfTheFile) {
  const TempDir dir;
  WriteFile(dir / "a", "0123456789");
  std::uint64_t size = 0;
  const Result<Descriptor> file = OpenForReading(dir / "a", &size);
  ASSERT_TRUE(file.ok());
  EXPECT_EQ(size, 10u);
  std::array<char, 8> bytes{};
  EXPECT_EQ(ReadAt(*file, bytes.data(), 8, 1), 8);
  EXPECT_EQ(std::string(bytes.data(), 8), "12345678");
  EXPECT_EQ(ReadAt(*file, bytes.data(), 8, 7), 3);
  EXPECT_EQ(ReadAt(*file, bytes.data(), 8, 10), 0);
  EXPECT_EQ(ReadAt(Descriptor(), bytes.data(), 8, 0), -1);
}

TEST(DescriptorTest, OnlyRegularFilesAreOpenedForReading) {
  const TempDir dir;
  std::uint64_t size = 0;
  EXPECT_EQ(OpenForReading(dir / "missing", &size).status().code(), StatusCode::kNotFound);
  EXPECT_EQ(OpenForReading(dir / "", &size).status().code(), StatusCode::kDamaged);
  ASSERT_EQ(mkfifo((dir / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(OpenForReading(dir / "pipe", &size).status().code(), StatusCode::kDamaged);
}

TEST(DescriptorTest, WritingWhereNothingCanBeWrittenSaysWhy) {
  EXPECT_EQ(WriteAll(Descriptor(), "a"), EBADF);
  EXPECT_EQ(Sync(Descriptor()), EBADF);
  const Descriptor full = OpenFile("/dev/full", O_WRONLY);
  EXPECT_EQ(WriteAll(full, "a"), ENOSPC);
  EXPECT_EQ(WriteAll(full, ""), 0);
}

}  // namespace
}  // namespace kestan::search
