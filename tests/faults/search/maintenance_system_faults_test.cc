// SPDX-License-Identifier: GPL-3.0-or-later
// System calls fail while an index is opened, made, converted, checked and rebuilt: there is an
// error, or the result is what it is when nothing fails. Once more without the fault, all is well,
// and nothing is left over.
//
// In the environment, KESTAN_FAULTS_ALL=1 gives each call every error; by default, each gets one.
#include <gtest/gtest.h>
#include <kestan/search.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "tests/faults/child.h"
#include "tests/faults/search/asked_index.h"
#include "tests/faults/search/system_errors.h"
#include "tests/faults/shared.h"
#include "tests/search/index/read_index.h"
#include "tests/support/environment.h"
#include "tests/support/temp_dir.h"

namespace kestan_faults {
namespace {

using kestan::search::Status;

// Work on files below a folder that is made afresh for each trial.
struct Work {
  std::function<void()> prepare;
  std::function<Status()> run;
  std::function<void()> check_whole;          // after success
  std::function<void()> check_after_failure;  // and before another try
};

struct CallLog {
  std::size_t count = 0;
  std::array<Function, 65536> functions;
};

bool TriesAll() { return kestan_tests::NumberFromEnvironment("KESTAN_FAULTS_ALL", 0) != 0; }

class MaintenanceSystemFaultsTest : public testing::Test {
 protected:
  MaintenanceSystemFaultsTest() {
    MakeIndex(original_);
    EXPECT_TRUE(kestan::search::WriteIndexFile(original_, file_).ok());
    documents_ = kestan_tests::ReadIndex(original_);
  }

  void PrepareEmpty() const {
    std::filesystem::remove_all(work_);
    std::filesystem::create_directory(work_);
  }

  void PrepareCopy() const {
    PrepareEmpty();
    std::filesystem::copy(original_, made_);
    std::filesystem::copy(file_, work_ + "/file");
  }

  // Runs the work in a process of its own, under `rule`.
  //   Returns  whether it succeeded.
  bool Run(const Work& work, const CallRule& rule) const {
    work.prepare();
    const Outcome outcome = RunInChild([&](Transcript* transcript) {
      WatchCalls(work_, rule);
      const Status status = work.run();
      transcript->Add(status.ok() ? "done" : "refused", status.ToString());
    });
    EXPECT_TRUE(outcome.ended && outcome.exit_status == 0) << Describe(outcome);
    EXPECT_EQ(outcome.standard_error, "");
    const std::string& said = outcome.transcript;
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << Describe(outcome);
    return said.rfind("done", 0) == 0;
  }

  std::vector<Function> CallsOf(const Work& work) const {
    const Shared<CallLog> shared;
    CallLog* const log = shared.get();
    EXPECT_TRUE(Run(work, [log](const SystemCall& call) -> Ruling {
      log->functions.at(log->count++) = call.function;
      return {};
    }));
    return {log->functions.begin(),
            log->functions.begin() + static_cast<std::ptrdiff_t>(log->count)};
  }

  void FailEachCallOf(const Work& work) const {
    const std::vector<Function> calls = CallsOf(work);
    std::array<std::size_t, kFunctions> turns{};
    int trials = 0;
    int refused = 0;
    for (std::size_t i = 0; i < calls.size() && !HasFailure(); ++i) {
      std::vector<int> errors = ErrorsOf(calls[i]);
      if (!TriesAll()) {
        errors = {errors[turns.at(static_cast<std::size_t>(calls[i]))++ % errors.size()]};
      }
      for (const int error : errors) {
        SCOPED_TRACE("call " + std::to_string(i) + " " + NameOf(calls[i]) + ": " +
                     (error == kShort ? "half the bytes" : strerror(error)));
        ++trials;
        const bool is_done =
            Run(work, [i, error, call = std::size_t{0}](const SystemCall& system_call) mutable {
              return call++ == i ? RulingOf(error, system_call) : Ruling();
            });
        refused += is_done ? 0 : 1;
        is_done ? work.check_whole() : work.check_after_failure();
        if (!is_done) {
          const Status again = work.run();
          EXPECT_TRUE(again.ok()) << again.ToString();
          work.check_whole();
        }
      }
    }
    std::set<std::string> names;
    for (const Function function : calls) names.insert(NameOf(function));
    std::string list;
    for (const std::string& name : names) list += " " + name;
    std::printf("%zu calls (%s ), %d failures: %d reported\n", calls.size(), list.c_str(), trials,
                refused);
    std::fflush(stdout);  // children would print it again
    EXPECT_GT(refused, 0);
  }

  void ExpectWholeIndex() const {
    EXPECT_TRUE(kestan_tests::ReadIndex(made_) == documents_);
    EXPECT_EQ(kestan_tests::FilesIn(made_), kestan_tests::NamedFiles(made_));
  }

  // What a conversion has made has no lock of a writer, and words as the file has them.
  void ExpectConverted() const {
    EXPECT_EQ(kestan_tests::ReadIndex(made_).size(), documents_.size());
    EXPECT_FALSE(std::filesystem::exists(made_ + ".new"));
  }

  const kestan_tests::TempDir folder_;
  const std::string original_ = folder_ / "original";
  const std::string file_ = folder_ / "file";
  const std::string work_ = folder_ / "work";
  const std::string made_ = work_ + "/made";
  kestan_tests::ReadDocuments documents_;
};

TEST_F(MaintenanceSystemFaultsTest, Converting) {
  FailEachCallOf({[this] {
                    PrepareCopy();
                    std::filesystem::remove_all(made_);
                  },
                  [this] { return kestan::search::ConvertIndexFile(work_ + "/file", made_); },
                  [this] { ExpectConverted(); },
                  [this] {
                    // An error of the last sync comes after the folder has its name.
                    if (!std::filesystem::exists(made_)) return;
                    ExpectConverted();
                    std::filesystem::remove_all(made_);
                  }});
}

TEST_F(MaintenanceSystemFaultsTest, WritingAnIndexFile) {
  const std::string target = work_ + "/target";
  const auto check = [&] {
    const auto report = kestan::search::CheckIndex(target);
    EXPECT_TRUE(report.ok() && report->faults == 0 && report->documents == documents_.size());
    if (!std::filesystem::exists(target + ".new")) return;
    // Removing it failed. The next run does that.
    std::filesystem::remove(target);
    EXPECT_TRUE(kestan::search::WriteIndexFile(made_, target).ok());
    EXPECT_FALSE(std::filesystem::exists(target + ".new"));
  };
  FailEachCallOf({[this] { PrepareCopy(); },
                  [&] { return kestan::search::WriteIndexFile(made_, target); }, check,
                  [&] {
                    if (!std::filesystem::exists(target)) return;
                    check();
                    std::filesystem::remove(target);
                  }});
}

TEST_F(MaintenanceSystemFaultsTest, Copying) {
  const std::string target = work_ + "/target";
  const auto check = [&] {
    EXPECT_TRUE(kestan_tests::ReadIndex(target) == documents_);
    EXPECT_FALSE(std::filesystem::exists(target + ".new"));
  };
  FailEachCallOf({[this] { PrepareCopy(); },
                  [&] { return kestan::search::CopyIndex(made_, target); }, check,
                  [&] {
                    if (!std::filesystem::exists(target)) return;
                    check();
                    std::filesystem::remove_all(target);
                  }});
}

TEST_F(MaintenanceSystemFaultsTest, Checking) {
  PrepareCopy();
  for (const std::string& path : {made_, work_ + "/file"}) {
    FailEachCallOf({[] {},
                    [&]() -> Status {
                      const auto report = kestan::search::CheckIndex(path);
                      if (!report.ok()) return report.status();
                      if (report->faults == 0 && report->documents == documents_.size()) return {};
                      // A file that cannot be read is a fault.
                      return {kestan::search::StatusCode::kDamaged, "faults were found"};
                    },
                    [this] { ExpectWholeIndex(); }, [this] { ExpectWholeIndex(); }});
  }
}

TEST_F(MaintenanceSystemFaultsTest, Rebuilding) {
  for (const char* const lost : {"MANIFEST", "1.terms", "2.documents"}) {
    SCOPED_TRACE(lost);
    FailEachCallOf({[&] {
                      PrepareCopy();
                      std::filesystem::remove(made_ + "/" + lost);
                    },
                    [this] { return kestan::search::RebuildDerivedFiles(made_); },
                    [this] { EXPECT_TRUE(kestan_tests::ReadIndex(made_) == documents_); }, [] {}});
  }
}

TEST_F(MaintenanceSystemFaultsTest, OpeningForReading) {
  PrepareCopy();
  for (const std::string& path : {made_, work_ + "/file"}) {
    FailEachCallOf({[] {},
                    [&]() -> Status {
                      const auto reader = kestan::search::IndexReader::Open(path);
                      if (!reader.ok()) return reader.status();
                      const auto count = reader->Count("common");
                      if (count.ok() && *count != documents_.size()) std::abort();
                      return count.status();
                    },
                    [] {}, [] {}});
  }
}

TEST_F(MaintenanceSystemFaultsTest, OpeningForWriting) {
  FailEachCallOf({[this] { PrepareCopy(); }, [this] { return OpenWriter(made_).status(); },
                  [this] { ExpectWholeIndex(); }, [this] { ExpectWholeIndex(); }});
}

TEST_F(MaintenanceSystemFaultsTest, MakingAnIndex) {
  FailEachCallOf({[this] { PrepareEmpty(); }, [this] { return OpenWriter(made_).status(); },
                  [this] { EXPECT_TRUE(kestan_tests::ReadIndex(made_).empty()); }, [] {}});
}

}  // namespace
}  // namespace kestan_faults
