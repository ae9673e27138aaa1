// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/files/output_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using kestan_tests::ReadFile;
using kestan_tests::TempDir;
using kestan_tests::WriteFile;

std::uint64_t ChecksumOf(std::string_view bytes) {
  Crc64 checksum;
  checksum.Add(bytes);
  return checksum.Value();
}

class OutputFileTest : public testing::Test {
 protected:
  bool Exists() const { return std::filesystem::exists(path_); }

  TempDir dir_;
  std::string path_ = dir_ / "file";
};

TEST_F(OutputFileTest, WritesWhatItIsGivenAndSumsItUp) {
  OutputFile file;
  ASSERT_TRUE(file.Create(path_).ok());
  file.Write("Hello ");
  file.Write("");
  file.Write("world");
  EXPECT_EQ(file.size(), 11u);
  const Result<FileSummary> summary = file.Finish();
  ASSERT_TRUE(summary.ok());
  EXPECT_EQ(*summary, (FileSummary{11, ChecksumOf("Hello world")}));
  EXPECT_EQ(ReadFile(path_), "Hello world");
}

TEST_F(OutputFileTest, PiecesOfEverySizeComeOutInOrder) {
  OutputFile file;
  ASSERT_TRUE(file.Create(path_).ok());
  std::string all;
  for (const std::size_t size : {1u, 1u << 20, (1u << 20) - 2, 3u, 3u << 20, 5u, (1u << 20) - 1}) {
    const std::string piece(size, static_cast<char>('a' + all.size() % 26));
    file.Write(piece);
    all += piece;
  }
  const Result<FileSummary> summary = file.Finish();
  ASSERT_TRUE(summary.ok());
  EXPECT_EQ(*summary, (FileSummary{all.size(), ChecksumOf(all)}));
  EXPECT_TRUE(ReadFile(path_) == all);
}

TEST_F(OutputFileTest, AnEmptyFileIsAFile) {
  OutputFile file;
  ASSERT_TRUE(file.Create(path_).ok());
  EXPECT_EQ(*file.Finish(), (FileSummary{0, 0}));
  EXPECT_TRUE(Exists());
}

TEST_F(OutputFileTest, AFileThatExistsIsNotWrittenOver) {
  WriteFile(path_, "old");
  {
    OutputFile file;
    EXPECT_EQ(file.Create(path_).ToString(), path_ + ": File exists");
  }
  EXPECT_EQ(ReadFile(path_), "old");
}

TEST_F(OutputFileTest, AMissingDirectoryIsNotFound) {
  OutputFile file;
  EXPECT_EQ(file.Create(dir_ / "none/file").code(), StatusCode::kNotFound);
  EXPECT_FALSE(file.Finish().ok());
}

TEST_F(OutputFileTest, WithoutFinishTheFileIsRemoved) {
  {
    OutputFile file;
    ASSERT_TRUE(file.Create(path_).ok());
    file.Write("half");
    EXPECT_TRUE(Exists());
  }
  EXPECT_FALSE(Exists());
}

// Lowers the largest size of a file for as long as it lives.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &old_);
    rlimit limit = old_;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &old_);
    std::signal(SIGXFSZ, handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit old_{};
  void (*handler_)(int);
};

TEST_F(OutputFileTest, AFileThatDoesNotFitIsRemovedAndTheFirstErrorKept) {
  const FileSizeLimit limit(3 << 20);  // in the middle of a write, so that one is short
  OutputFile file;
  ASSERT_TRUE(file.Create(path_).ok());
  for (int i = 0; i < 40; ++i) file.Write(std::string(100'000, 'x'));
  const Result<FileSummary> summary = file.Finish();
  EXPECT_EQ(summary.status().code(), StatusCode::kSystem);
  EXPECT_EQ(summary.status().ToString(), path_ + ": File too large");
  EXPECT_FALSE(Exists());
}

TEST_F(OutputFileTest, SummariesOfFilesAreThoseOfTheirWriter) {
  const std::string bytes(2'500'000, 'q');
  WriteFile(path_, bytes);
  const Result<FileSummary> summary = SummaryOf(path_);
  ASSERT_TRUE(summary.ok());
  EXPECT_EQ(*summary, (FileSummary{bytes.size(), ChecksumOf(bytes)}));
  EXPECT_FALSE(*summary == (FileSummary{bytes.size(), 1}));
  EXPECT_FALSE(*summary == (FileSummary{1, summary->checksum}));
  EXPECT_EQ(SummaryOf(dir_ / "missing").status().code(), StatusCode::kNotFound);
  EXPECT_EQ(SummaryOf(dir_ / "").status().code(), StatusCode::kDamaged);
}

TEST_F(OutputFileTest, FilesAndDirectoriesAreSynced) {
  WriteFile(path_, "a");
  EXPECT_TRUE(SyncFile(path_).ok());
  EXPECT_TRUE(SyncDirectory(dir_ / "").ok());
  EXPECT_EQ(SyncFile(dir_ / "missing").code(), StatusCode::kNotFound);
  EXPECT_EQ(SyncDirectory(path_).code(), StatusCode::kSystem);
}

TEST_F(OutputFileTest, ReplacingAFileLeavesNothingBeside) {
  WriteFile(path_, "old");
  WriteFile(path_ + ".new", "left over");
  ASSERT_TRUE(ReplaceFile(path_, "new").ok());
  EXPECT_EQ(ReadFile(path_), "new");
  EXPECT_FALSE(std::filesystem::exists(path_ + ".new"));
  ASSERT_TRUE(ReplaceFile(dir_ / "other", "").ok());
  EXPECT_EQ(ReadFile(dir_ / "other"), "");
}

TEST_F(OutputFileTest, FilesAreSyncedTogether) {
  WriteFile(path_, "a");
  WriteFile(dir_ / "other", "b");
  EXPECT_TRUE(SyncFiles({}).ok());
  EXPECT_TRUE(SyncFiles({path_, dir_ / "other"}).ok());
  const Status status = SyncFiles({path_, dir_ / "missing"});
  EXPECT_EQ(status.code(), StatusCode::kNotFound);
  EXPECT_EQ(status.file(), dir_ / "missing");
}

TEST_F(OutputFileTest, AFileStaysWhereTheNewOneNeedsAFileThatIsMissing) {
  WriteFile(path_, "old");
  EXPECT_EQ(ReplaceFile(path_, "new", {dir_ / "missing"}).code(), StatusCode::kNotFound);
  EXPECT_EQ(ReadFile(path_), "old");
  EXPECT_FALSE(std::filesystem::exists(path_ + ".new"));
  WriteFile(dir_ / "needed", "b");
  EXPECT_TRUE(ReplaceFile(path_, "new", {dir_ / "needed"}).ok());
  EXPECT_EQ(ReadFile(path_), "new");
}

TEST_F(OutputFileTest, WhatIsSyncedLaterIsNotLookedForNow) {
  EXPECT_TRUE(ReplaceFile(path_, "new", {dir_ / "missing"}, Syncing::kLater).ok());
  EXPECT_EQ(ReadFile(path_), "new");
}

TEST_F(OutputFileTest, AFileThatCannotBeReplacedStays) {
  std::filesystem::create_directories(path_ + "/child");
  EXPECT_EQ(ReplaceFile(path_, "new").code(), StatusCode::kSystem);
  EXPECT_TRUE(std::filesystem::is_directory(path_));
  EXPECT_FALSE(std::filesystem::exists(path_ + ".new"));

  WriteFile(dir_ / "small", "old");
  {
    const FileSizeLimit limit(2);
    EXPECT_EQ(ReplaceFile(dir_ / "small", "newer").message(), "File too large");
  }
  EXPECT_EQ(ReadFile(dir_ / "small"), "old");
  EXPECT_FALSE(std::filesystem::exists(dir_ / "small.new"));
}

TEST_F(OutputFileTest, WholeFilesAreReadUpToALimit) {
  WriteFile(path_, "0123456789");
  EXPECT_EQ(*ReadWholeFile(path_, 10), "0123456789");
  EXPECT_EQ(ReadWholeFile(path_, 9).status().ToString(), path_ + ": it has more than 9 bytes");
  EXPECT_EQ(ReadWholeFile(path_, 9).status().code(), StatusCode::kDamaged);
  EXPECT_EQ(ReadWholeFile(dir_ / "missing", 9).status().code(), StatusCode::kNotFound);
}

}  // namespace
}  // namespace kestan::search
