// SPDX-License-Identifier: GPL-3.0-or-later
// A writer is killed while it commits and merges. What it leaves is one of the states that it
// committed, the last that it reported or the next, and the next writer removes the rest.
//
// In the environment, KESTAN_KILL_TRIALS=N kills it at N random moments instead of 60, and
// KESTAN_KILL_SEED=N makes these other ones.
#include <gtest/gtest.h>
#include <kestan/search/check.h>
#include <kestan/search/index_writer.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <new>
#include <random>
#include <string>

#include "tests/search/index/read_index.h"
#include "tests/support/environment.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using kestan_tests::ReadDocuments;

constexpr int kRounds = 40;
constexpr int kDocumentsOfRound = 5;

std::string WordsOfRound(int round) {
  std::string words = "round" + std::to_string(round);
  for (int i = 0; i < 200; ++i) words += " w" + std::to_string(round * i % 997);
  return words;
}

// Each round adds documents, replaces one, and removes and renames others.
void DoRound(int round, IndexWriter* writer) {
  const auto ok = [](const Status& status) {
    if (!status.ok()) _exit(2);
  };
  for (int i = 0; i < kDocumentsOfRound; ++i) {
    Document document;
    document.name = "n" + std::to_string(round) + "." + std::to_string(i);
    document.words = WordsOfRound(round);
    ok(writer->Add(document));
  }
  Document replaced;
  replaced.name = "replaced";
  replaced.words = WordsOfRound(round);
  ok(writer->Add(replaced));
  if (round > 0) {
    const std::string earlier = "n" + std::to_string(round - 1) + ".";
    ok(writer->Remove(earlier + "0"));
    ok(writer->Rename(earlier + "1", earlier + "moved"));
    ok(writer->SetField(earlier + "2", DocumentField::kTitle, "title"));
  }
  ok(round % 10 == 9 ? writer->Compact() : writer->Commit());
}

// Returns the documents after so many rounds.
ReadDocuments After(int rounds) {
  ReadDocuments documents;
  for (int round = 0; round < rounds; ++round) {
    const auto words = kestan_tests::WordsOf(WordsOfRound(round));
    for (int i = 0; i < kDocumentsOfRound; ++i) {
      documents["n" + std::to_string(round) + "." + std::to_string(i)].words = words;
    }
    documents["replaced"] = {};
    documents["replaced"].words = words;
    if (round == 0) continue;
    const std::string earlier = "n" + std::to_string(round - 1) + ".";
    documents.erase(earlier + "0");
    documents[earlier + "moved"] = documents[earlier + "1"];
    documents.erase(earlier + "1");
    documents[earlier + "2"].title = "title";
  }
  return documents;
}

// A number that the child counts up and the parent reads.
class SharedCount {
 public:
  SharedCount()
      : count_(new (mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE,
                         MAP_SHARED | MAP_ANONYMOUS, -1, 0)) std::atomic<int>(0)) {}
  ~SharedCount() { munmap(count_, sizeof *count_); }
  SharedCount(const SharedCount&) = delete;
  SharedCount& operator=(const SharedCount&) = delete;

  std::atomic<int>& operator*() const { return *count_; }

 private:
  std::atomic<int>* const count_;
};

[[noreturn]] void RunRounds(const std::string& path, std::atomic<int>& done) {
  WriterOptions options;
  options.threads = 2;
  options.merge_factor = 3;
  auto writer = IndexWriter::Open(path, options);
  if (!writer.ok()) _exit(3);
  for (int round = 0; round < kRounds; ++round) {
    DoRound(round, &*writer);
    done = round + 1;
  }
  _exit(0);
}

// Runs all rounds in a child, which is killed after so many microseconds; 0: not at all.
//   Returns  how many rounds it reported as done.
int RunAndKill(const std::string& path, long kill_after_us, int* status) {
  const SharedCount done;
  const pid_t child = fork();
  if (child == 0) RunRounds(path, *done);
  if (kill_after_us > 0) {
    const timespec pause{kill_after_us / 1'000'000, kill_after_us % 1'000'000 * 1000};
    nanosleep(&pause, nullptr);
    kill(child, SIGKILL);
  }
  waitpid(child, status, 0);
  return *done;
}

// Returns how many findings of the kind CheckIndex() has.
std::uint64_t FindingsIn(const std::string& path, bool faults) {
  const auto report = CheckIndex(path);
  EXPECT_TRUE(report.ok()) << report.status().ToString();
  if (!report.ok()) return 1;
  for (const IndexFinding& finding : report->findings) {
    EXPECT_FALSE(finding.is_fault) << finding.file << ": " << finding.text;
  }
  return faults ? report->faults : report->notes;
}

// What was found after kills.
struct KillCounts {
  int killed = 0;
  int without_index = 0;
  int with_leftovers = 0;
  int after_reported = 0;  // the state of the last round that was reported
  int after_next = 0;      // that of the round that was going on

  void Print() const {
    std::printf(
        "%d kills, %d before there was an index; %d left files that no manifest names; %d old, %d "
        "new\n",
        killed, without_index, with_leftovers, after_reported, after_next);
    std::fflush(stdout);
  }
};

// Checks what a writer left at `path` after `done` rounds, before and after the next writer opens
// it, and that this one can go on.
void CheckLeft(const std::string& path, int done, KillCounts* counts) {
  if (std::filesystem::exists(path + "/MANIFEST")) {
    EXPECT_EQ(FindingsIn(path, true), 0u);
    counts->with_leftovers += kestan_tests::FilesIn(path) != kestan_tests::NamedFiles(path) ? 1 : 0;
  } else {
    ++counts->without_index;
  }
  auto writer = IndexWriter::Open(path);
  ASSERT_TRUE(writer.ok()) << writer.status().ToString();
  EXPECT_EQ(kestan_tests::FilesIn(path), kestan_tests::NamedFiles(path));
  EXPECT_EQ(FindingsIn(path, true), 0u);
  EXPECT_EQ(FindingsIn(path, false), 0u);
  const ReadDocuments found = kestan_tests::ReadIndex(path);
  const bool is_next = done < kRounds && found == After(done + 1);
  EXPECT_TRUE(is_next || found == After(done)) << done;
  ++(is_next ? counts->after_next : counts->after_reported);
  const int rounds = is_next ? done + 1 : done;
  if (rounds == kRounds) return;
  DoRound(rounds, &*writer);
  EXPECT_TRUE(kestan_tests::ReadIndex(path) == After(rounds + 1)) << rounds;
  EXPECT_EQ(kestan_tests::FilesIn(path), kestan_tests::NamedFiles(path));
}

TEST(IndexWriterKillTest, LeavesTheOldStateOrTheNewOne) {
  using Clock = std::chrono::steady_clock;
  const kestan_tests::TempDir folder;
  int status = 0;
  const Clock::time_point start = Clock::now();
  ASSERT_EQ(RunAndKill(folder / "whole", 0, &status), kRounds) << status;
  auto whole_us =
      std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start).count();
  ASSERT_TRUE(kestan_tests::ReadIndex(folder / "whole") == After(kRounds));

  std::mt19937 random(  // NOLINT(cert-msc32-c,cert-msc51-cpp)
      static_cast<unsigned>(kestan_tests::NumberFromEnvironment("KESTAN_KILL_SEED", 14)));
  const int trials = kestan_tests::NumberFromEnvironment("KESTAN_KILL_TRIALS", 60);
  KillCounts counts;
  while (counts.killed < trials && !HasFailure()) {
    const std::string path = folder / "index";
    const auto moment = static_cast<long>(random() % static_cast<unsigned long>(whole_us)) + 1;
    SCOPED_TRACE("kill " + std::to_string(counts.killed) + " after us " + std::to_string(moment));
    const int done = RunAndKill(path, moment, &status);
    const bool is_killed = WIFSIGNALED(status);
    // How long a writer takes changes with what else the machine does.
    whole_us = is_killed ? whole_us + whole_us / 100 : whole_us - whole_us / 20;
    if (is_killed) {
      ++counts.killed;
      CheckLeft(path, done, &counts);
    }
    if (!HasFailure()) std::filesystem::remove_all(path);
    if (is_killed && counts.killed % 500 == 0) counts.Print();
  }
  counts.Print();
  EXPECT_GT(counts.killed, 0);
  EXPECT_GT(counts.with_leftovers, 0);
}

}  // namespace
}  // namespace kestan::search
