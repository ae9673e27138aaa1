// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/files/file_bytes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using kestan_tests::TempDir;
using kestan_tests::WriteFile;

class FileBytesTest : public testing::Test {
 protected:
  std::shared_ptr<const FileBytes> Open(const std::string& bytes) {
    WriteFile(dir_ / "file", bytes);
    return *FileBytes::Open(dir_ / "file", bytes.size());
  }

  TempDir dir_;
};

std::string Read(const FileBytes& file, std::uint64_t offset, std::uint64_t size) {
  return std::string(file.Read(offset, size).view());
}

TEST_F(FileBytesTest, ReadsWhatIsThere) {
  const auto file = Open("0123456789");
  EXPECT_EQ(file->size(), 10u);
  EXPECT_EQ(file->path(), dir_ / "file");
  EXPECT_EQ(Read(*file, 0, 10), "0123456789");
  EXPECT_EQ(Read(*file, 3, 4), "3456");
  EXPECT_EQ(Read(*file, 3, 0), "");
}

TEST_F(FileBytesTest, WhatReachesPastTheEndIsNotThere) {
  const auto file = Open("0123456789");
  EXPECT_EQ(Read(*file, 8, 4), "89");
  EXPECT_EQ(Read(*file, 10, 1), "");
  EXPECT_EQ(Read(*file, 11, 1), "");
  EXPECT_EQ(Read(*file, UINT64_MAX, UINT64_MAX), "");
  EXPECT_EQ(Read(*file, 9, UINT64_MAX), "9");
}

TEST_F(FileBytesTest, AFileOfAnySizeIsReadWithoutAMapping) {
  WriteFile(dir_ / "file", "0123456789");
  const auto file = *FileBytes::OpenUnmapped(dir_ / "file");
  EXPECT_EQ(file->size(), 10u);
  EXPECT_EQ(Read(*file, 3, 4), "3456");
  WriteFile(dir_ / "file", "01");  // which would end a process that reads a mapping of it
  EXPECT_EQ(Read(*file, 3, 4), "");
  EXPECT_EQ(FileBytes::OpenUnmapped(dir_ / "none").status().code(), StatusCode::kNotFound);
  EXPECT_EQ(FileBytes::OpenUnmapped(dir_ / ".").status().code(), StatusCode::kDamaged);
}

TEST_F(FileBytesTest, AnEmptyFileCanBeRead) { EXPECT_EQ(Read(*Open(""), 0, 5), ""); }

TEST_F(FileBytesTest, AllBytesCanBeReadSparsely) {
  const std::string text(100'000, 'x');
  EXPECT_EQ(Open(text)->ReadSparsely().view(), text);
  EXPECT_EQ(Open("")->ReadSparsely().view(), "");
  EXPECT_EQ(FileBytes::InMemory("abc", "path")->ReadSparsely().view(), "abc");
}

TEST_F(FileBytesTest, AnnouncementsMayReachPastTheEnd) {
  const auto file = Open("0123456789");
  const auto in_memory = FileBytes::InMemory("abc", "path");
  for (const std::uint64_t offset : {std::uint64_t{0}, std::uint64_t{9}, UINT64_MAX}) {
    for (const std::uint64_t size : {std::uint64_t{0}, std::uint64_t{1}, UINT64_MAX}) {
      for (const auto& announced : {file, in_memory}) {
        announced->WillRead(offset, size);
        announced->BeginRead(offset, size);
      }
    }
  }
  EXPECT_EQ(Read(*file, 0, 10), "0123456789");
}

TEST_F(FileBytesTest, AFileOfAnotherSizeIsDamaged) {
  WriteFile(dir_ / "file", "0123456789");
  for (const std::uint64_t size : {0u, 9u, 11u}) {
    const Status status = FileBytes::Open(dir_ / "file", size).status();
    EXPECT_EQ(status.code(), StatusCode::kDamaged);
    EXPECT_EQ(status.ToString(),
              (dir_ / "file") + ": it has 10 bytes instead of " + std::to_string(size));
  }
}

TEST_F(FileBytesTest, AMissingFileIsNotFound) {
  const Status status = FileBytes::Open(dir_ / "missing", 1).status();
  EXPECT_EQ(status.code(), StatusCode::kNotFound);
  EXPECT_EQ(status.ToString(), (dir_ / "missing") + ": No such file or directory");
}

TEST_F(FileBytesTest, ADirectoryIsDamage) {
  EXPECT_EQ(FileBytes::Open(dir_ / "", 1).status().code(), StatusCode::kDamaged);
}

TEST_F(FileBytesTest, APrefixCanBeLeftOut) {
  const auto file = Open("0123456789");
  Bytes bytes = file->Read(2, 6);
  bytes.RemovePrefix(4);
  const Bytes copy = bytes;
  bytes = {};
  EXPECT_EQ(copy.view(), "67");
}

TEST_F(FileBytesTest, ManyThreadsReadAtOnce) {
  std::string text;
  for (int i = 0; i < 20000; ++i) text += static_cast<char>(i * 7 % 251);
  const auto file = Open(text);
  std::vector<std::thread> threads;
  std::vector<int> wrong(4);
  for (std::size_t t = 0; t < wrong.size(); ++t) {
    threads.emplace_back([&, t] {
      for (std::size_t at = t; at + 100 < text.size(); at += 37) {
        if (Read(*file, at, 100) != text.substr(at, 100)) ++wrong[t];
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, std::vector<int>(4));
}

}  // namespace
}  // namespace kestan::search
