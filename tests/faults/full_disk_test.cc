// SPDX-License-Identifier: GPL-3.0-or-later
// The disk fills up during the session. At every step it gets at most 600 bytes more space, until
// the session succeeds: once as a limit on the size of each file, and once as a disk that takes so
// many bytes of growth, then a part of a write, and then nothing.
//
// gdbm 1.23 writes the directory and the header of its file even where it could not write a bucket.
// The file then names a bucket that is not there, and gdbm refuses to read on. So a session that
// goes on when the disk is full may lose documents that it had flushed. How often is counted here.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include "tests/faults/kill_aftermath.h"
#include "tests/faults/system_call_session.h"
#include "tests/support/index_test.h"

namespace {

using kestan_faults::Aftermath;
using kestan_faults::CallRule;
using kestan_faults::Function;
using kestan_faults::Outcome;
using kestan_faults::Ruling;
using kestan_faults::SystemCall;

constexpr long kStepBytes = 600;
constexpr long kMostBytes = 1'000'000;

// Returns by how many bytes a write of `bytes` bytes from where `file` stands lengthens it.
long GrowthBy(int file, std::size_t bytes) {
  struct stat status = {};
  fstat(file, &status);
  const off_t end = lseek(file, 0, SEEK_CUR) + static_cast<off_t>(bytes);
  return std::max(static_cast<long>(end - status.st_size), 0L);
}

// A disk on which `room` bytes are free.
CallRule DiskOf(long room) {
  return [room](const SystemCall& call) mutable -> Ruling {
    if (call.function != Function::kWrite) return {};
    const long growth = GrowthBy(call.file, call.bytes);
    const long fitting = static_cast<long>(call.bytes) - std::max(growth - room, 0L);
    if (fitting <= 0) return {ENOSPC};
    room -= std::min(growth, room);
    return {0, static_cast<std::size_t>(fitting)};
  };
}

void SetFileLimit(rlim_t bytes) {
  rlimit limit = {};
  getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = std::min(bytes, limit.rlim_max);
  setrlimit(RLIMIT_FSIZE, &limit);
}

// Lets files grow to `bytes` bytes in this process, until its end begins: what it printed goes to a
// file too, and is written out then.
void LimitFiles(long bytes) {
  static std::array<char, 1 << 18> printed;
  std::setvbuf(stderr, printed.data(), _IOFBF, printed.size());
  std::signal(SIGXFSZ, SIG_IGN);
  SetFileLimit(static_cast<rlim_t>(bytes));
  std::atexit([] { SetFileLimit(RLIM_INFINITY); });
}

// A disk on which every file has a limit.
CallRule FilesOf(long bytes) {
  return [bytes, is_set = false](const SystemCall&) mutable -> Ruling {
    if (!is_set) LimitFiles(bytes);
    is_set = true;
    return {};
  };
}

struct Counts {
  int steps = 0;
  int messages = 0;  // steps that said which items could not be written
  int flushed = 0;   // steps whose first flush came before space ran out; of these:
  int whole = 0;     // every document of the flush is there and answers
  int unopened = 0;  // the index does not open
  int lost = 0;      // it does, and misses documents or answers
  int repaired = 0;  // unopened or lost, but whole after gdbm_recover
};

void Print(const Counts& counts) {
  std::printf(
      "%d steps, %d with messages; %d flushed documents before space ran out: afterwards "
      "%d were whole, %d did not open, %d had lost documents; gdbm_recover repaired %d\n",
      counts.steps, counts.messages, counts.flushed, counts.whole, counts.unopened, counts.lost,
      counts.repaired);
}

bool HasFlushed(const std::string& transcript) {
  return transcript.find("\nflush: 0") < transcript.find("\nshort write: 1");
}

void Count(const Aftermath& left, Counts* counts) {
  ++counts->flushed;
  if (left.found.IsWhole()) {
    ++counts->whole;
    EXPECT_TRUE(left.later.IsWhole()) << Describe(left.outcome);
  } else if (left.found.IsOpen()) {
    ++counts->lost;
  } else {
    ++counts->unopened;
  }
  if (left.repaired.IsWhole()) ++counts->repaired;
}

Counts FillUp(const std::function<CallRule(long)>& disk_of) {
  const kestan_tests::TempDir folder;
  const std::string files = folder / "files";
  Counts counts;
  bool is_full = true;
  for (long bytes = 0; is_full && bytes < kMostBytes; bytes += kStepBytes) {
    ++counts.steps;
    const Outcome outcome = RunWatchedSession(files, disk_of(bytes));
    EXPECT_TRUE(EndedAsPromised(outcome)) << bytes << " bytes: " << Describe(outcome);
    const Aftermath left =
        Examine(kestan_faults::IndexIn(files), kestan_faults::SessionReference());
    EXPECT_TRUE(EndedAsPromised(left.outcome)) << bytes << " bytes: " << Describe(left.outcome);
    is_full = outcome.transcript.find("\nshort write: 1") != std::string::npos;
    const std::string& said = outcome.standard_error;
    if (said.find("Kestan: Could not write item '") != std::string::npos) ++counts.messages;
    if (HasFlushed(outcome.transcript)) Count(left, &counts);
  }
  EXPECT_FALSE(is_full);
  Print(counts);
  return counts;
}

TEST(FullDiskTest, IsReportedWhereFilesHaveALimit) {
  const Counts counts = FillUp(FilesOf);
  EXPECT_GT(counts.messages, 0);
  EXPECT_GT(counts.whole, 0);
}

TEST(FullDiskTest, IsReportedWhereNoFileCanGrow) {
  const Counts counts = FillUp(DiskOf);
  EXPECT_GT(counts.messages, 0);
  EXPECT_GT(counts.whole, 0);
}

}  // namespace
