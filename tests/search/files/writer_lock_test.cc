// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/files/writer_lock.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <utility>

#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using kestan_tests::ReadFile;
using kestan_tests::TempDir;
using kestan_tests::WriteFile;

class WriterLockTest : public testing::Test {
 protected:
  TempDir dir_;
  std::string path_ = dir_ / "lock";
  std::string own_ = std::to_string(getpid());
};

TEST_F(WriterLockTest, TheFileHasTheNumberOfTheHolder) {
  const Result<WriterLock> lock = WriterLock::Take(path_);
  ASSERT_TRUE(lock.ok());
  EXPECT_EQ(ReadFile(path_), own_ + "\n");
}

TEST_F(WriterLockTest, ASecondWriterIsToldWhoHoldsIt) {
  const Result<WriterLock> lock = WriterLock::Take(path_);
  const Status status = WriterLock::Take(path_).status();
  EXPECT_EQ(status.code(), StatusCode::kBusy);
  EXPECT_EQ(status.ToString(), path_ + ": process " + own_ + " is writing it");
}

TEST_F(WriterLockTest, NothingIsWrittenToWhereALinkLeads) {
  WriteFile(dir_ / "other", "text");
  ASSERT_EQ(symlink((dir_ / "other").c_str(), path_.c_str()), 0);
  EXPECT_EQ(WriterLock::Take(path_).status().code(), StatusCode::kSystem);
  EXPECT_EQ(ReadFile(dir_ / "other"), "text");
}

TEST_F(WriterLockTest, NothingIsWrittenToAFileThatHasAnotherNameToo) {
  WriteFile(dir_ / "other", "text");
  ASSERT_EQ(link((dir_ / "other").c_str(), path_.c_str()), 0);
  EXPECT_EQ(WriterLock::Take(path_).status().code(), StatusCode::kDamaged);
  EXPECT_EQ(ReadFile(dir_ / "other"), "text");
}

TEST_F(WriterLockTest, AFileWithoutANumberIsHeldByAnotherProcess) {
  const Result<WriterLock> lock = WriterLock::Take(path_);
  for (const char* text : {"", "x12", "-1"}) {
    WriteFile(path_, text);
    EXPECT_EQ(WriterLock::Take(path_).status().message(), "another process is writing it");
  }
  WriteFile(path_, std::string(1000, '7'));
  EXPECT_EQ(WriterLock::Take(path_).status().message(),
            "process " + std::string(20, '7') + " is writing it");
}

TEST_F(WriterLockTest, TheEndOfTheHolderFreesItAndTheFileStays) {
  { const Result<WriterLock> lock = WriterLock::Take(path_); }
  EXPECT_EQ(ReadFile(path_), "");
  EXPECT_TRUE(WriterLock::Take(path_).ok());
}

TEST_F(WriterLockTest, AFileOfADeadProcessIsNoObstacle) {
  WriteFile(path_, "4000000 and what else was in it\n");
  const Result<WriterLock> lock = WriterLock::Take(path_);
  ASSERT_TRUE(lock.ok());
  EXPECT_EQ(ReadFile(path_), own_ + "\n");
}

TEST_F(WriterLockTest, AProcessThatIsKilledHoldsNothing) {
  const pid_t child = fork();
  if (child == 0) {
    const Result<WriterLock> lock = WriterLock::Take(path_);
    _exit(lock.ok() ? 0 : 1);  // without destructors, as after a kill
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(ReadFile(path_), std::to_string(child) + "\n");
  EXPECT_TRUE(WriterLock::Take(path_).ok());
}

TEST_F(WriterLockTest, MovesFromOneOwnerToAnother) {
  Result<WriterLock> first = WriterLock::Take(path_);
  Result<WriterLock> other = WriterLock::Take(dir_ / "other");
  ASSERT_TRUE(first.ok() && other.ok());
  *other = std::move(*first);
  EXPECT_TRUE(WriterLock::Take(dir_ / "other").ok());
  EXPECT_EQ(WriterLock::Take(path_).status().code(), StatusCode::kBusy);
  const WriterLock last = std::move(*other);
  EXPECT_EQ(WriterLock::Take(path_).status().code(), StatusCode::kBusy);
}

TEST_F(WriterLockTest, WhatCannotBeLockedSaysWhy) {
  EXPECT_EQ(WriterLock::Take(dir_ / "none/lock").status().code(), StatusCode::kNotFound);
  const Status status = WriterLock::Take(dir_ / "").status();
  EXPECT_EQ(status.code(), StatusCode::kSystem);
  EXPECT_EQ(status.message(), "Is a directory");
}

}  // namespace
}  // namespace kestan::search
