// SPDX-License-Identifier: GPL-3.0-or-later
// What grows by more than it needs, so that it need not grow often, does with what it needs where
// there is no memory for more.
#include <gtest/gtest.h>
#include <kestan/kestan.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "tests/faults/allocation_trial.h"
#include "tests/support/index_test.h"

namespace kestan_faults {
namespace {

class SlackAllocationFaultsTest : public testing::Test {
 protected:
  // Runs `session` with one allocation of `bytes` bytes failing, of which it must make one, and
  // expects that this makes no difference to it.
  template <typename Session>
  void ExpectToGoOnWithout(std::size_t bytes, Session session) {
    const Trial undisturbed = RunWithFault(0, Failing::kOnce, session);
    for (long nth = 1; nth <= undisturbed.log.calls; ++nth) {
      const Trial trial = RunWithFault(nth, Failing::kOnce, session);
      if (!trial.log.HasFailed(bytes)) continue;
      EXPECT_EQ(trial.outcome.exit_status, 0) << Describe(trial);
      EXPECT_EQ(trial.outcome.standard_error, "") << Describe(trial);
      EXPECT_EQ(trial.outcome.transcript, undisturbed.outcome.transcript) << Describe(trial);
      return;
    }
    ADD_FAILURE() << "no allocation has " << bytes << " bytes";
  }

  const kestan_tests::TempDir folder_;
  const std::string path_ = folder_ / "index";
};

// The buffer has 10,001 bytes, and asks for half as many more.
TEST_F(SlackAllocationFaultsTest, TheTextBufferTakesWhatItNeeds) {
  {
    Kestan engine;
    engine.OpenIndex(path_.c_str(), 1);
    engine.DBPutTitle("short", std::string(10000, 's').c_str());
    engine.DBPutTitle("long", std::string(12000, 'l').c_str());
  }
  ExpectToGoOnWithout(15001, [&](Transcript* transcript) {
    Kestan engine;
    engine.OpenIndex(path_.c_str(), 0);
    engine.DBGetTitle("short");
    transcript->Add("bytes", static_cast<long>(std::strlen(engine.DBGetTitle("long"))));
  });
}

// 1,000 positions with what stands before them are 2,004 bytes, and a quarter more is asked for.
TEST_F(SlackAllocationFaultsTest, APostingRecordTakesWhatItNeeds) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "cat ";
  ExpectToGoOnWithout(2505, [&](Transcript* transcript) {
    std::filesystem::remove(path_);
    Kestan engine;
    engine.OpenIndex(path_.c_str(), 1);
    engine.AddDocumentWords("a", text.c_str());
    engine.FlushIndex();
    const int id = engine.QueryWord("cat");
    transcript->Add("results", engine.QueryResults(id));
    engine.FreeQueryResult(id);
  });
}

}  // namespace
}  // namespace kestan_faults
