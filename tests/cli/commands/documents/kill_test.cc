// SPDX-License-Identifier: GPL-3.0-or-later
// The command is killed, and the index is the old one or the new one.
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <map>
#include <random>
#include <set>
#include <string>
#include <thread>

#include "tests/cli/sync/changed_folder_test.h"
#include "tests/cli/traced_command.h"
#include "tests/support/environment.h"

namespace kestan_tests {
namespace {

using Arguments = std::vector<std::string>;

// The system calls that change a file or a folder. Calls that only some architectures have are
// named where they are.
const std::set<unsigned long long>& WritingCalls() {
  static const std::set<unsigned long long> calls{
      SYS_write,       SYS_pwrite64, SYS_writev,  SYS_ftruncate, SYS_fsync,
      SYS_fdatasync,   SYS_msync,    SYS_munmap,  SYS_ioctl,     SYS_fchmod,
      SYS_fchown,      SYS_flock,    SYS_openat,  SYS_unlinkat,  SYS_renameat,
      SYS_close,       SYS_unlink,   SYS_rename,  SYS_renameat2, SYS_mkdirat,
      SYS_fallocate,   SYS_linkat,   SYS_fcntl,   SYS_fsetxattr, SYS_fremovexattr,
#ifdef SYS_mkdir
      SYS_mkdir,
#endif
#ifdef SYS_rmdir
      SYS_rmdir,
#endif
#ifdef SYS_ftruncate64
      SYS_ftruncate64, SYS_fchown32, SYS_fcntl64,
#endif
      SYS_exit_group};
  return calls;
}

// Kills the traced `child` where it enters its `nth` writing call, counted from 1.
//   Returns  true; false if it ended by itself before.
bool KillBefore(pid_t child, int nth) {
  int calls = 0;
  const auto is_nth = [&](const Call& call) {
    return WritingCalls().count(call.number) != 0 && ++calls == nth;
  };
  if (!StopBefore(child, is_nth)) return false;
  EndStopped(child);
  return true;
}

class KillTest : public ChangedFolderTest {
 protected:
  void SetUp() override {
    ChangedFolderTest::SetUp();
    old_ = Visible("my.index");
  }

  // Returns the index that `change` makes if it is not killed.
  std::string After(const Arguments& change) {
    Reset();
    EXPECT_EQ(Run(change).status, 0);
    return Visible("my.index");
  }

  // Whether the index is the old or the `changed` one, and whether the next run makes the changed
  // one of it and leaves nothing over.
  void ExpectWhole(const Arguments& change, const std::string& changed, const std::string& when) {
    const std::string now = Visible("my.index");
    ASSERT_TRUE(now == old_ || now == changed) << when << ": " << now;
    const bool is_old = now == old_;
    ASSERT_EQ(Run(is_old ? change : Arguments{"index", "my.index", "new/d"}).status, 0) << when;
    ASSERT_TRUE(!is_old || Visible("my.index") == changed) << when;
    ASSERT_EQ(FindingsIn("my.index"), "") << when;
  }

  // Kills `change` before each of its writing calls, or one in so many. Returns how often.
  int KillEverywhere(const Arguments& change) {
    const std::string changed = After(change);
    int trials = 0;
    for (int nth = 1;; nth += stride_, ++trials) {
      Reset();
      const TempDir streams;
      const bool killed = KillBefore(Start(change, streams, BeTraced), nth);
      ExpectWhole(change, changed, Joined(change) + ", before call " + std::to_string(nth));
      if (!killed || HasFatalFailure()) return trials;
    }
  }

  static std::string Joined(const Arguments& change) {
    std::string text;
    for (const std::string& word : change) text += word + " ";
    return text;
  }

  std::string old_;
  const int stride_ = NumberFromEnvironment("KESTAN_FAULTS_STRIDE", 1);
};

TEST_F(KillTest, LeavesTheOldOrTheNewIndexBeforeEachWritingCall) {
  int trials = 0;
  for (const Arguments& change : Changes()) {
    trials += KillEverywhere(change);
    if (HasFatalFailure()) return;
  }
  EXPECT_GT(trials, 100 / stride_);
  std::printf("killed before each writing call: %d trials, 0 lost, 0 damaged\n", trials);
}

TEST_F(KillTest, LeavesTheOldOrTheNewIndexAtAnyMoment) {
  const int wanted = NumberFromEnvironment("KESTAN_KILL_TRIALS", 200);
  std::mt19937 random(1);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same moments every time
  std::map<Arguments, std::string> changed;
  for (const Arguments& change : Changes()) changed[change] = After(change);
  int killed = 0;
  for (int trial = 0; trial < wanted; ++trial) {
    const Arguments change = Changes()[static_cast<std::size_t>(trial) % Changes().size()];
    Reset();
    const TempDir streams;
    const pid_t child = Start(change, streams);
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 12000));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    killed += WIFSIGNALED(status) ? 1 : 0;
    ExpectWhole(change, changed[change], Joined(change) + ", trial " + std::to_string(trial));
    if (HasFatalFailure()) return;
  }
  EXPECT_GT(killed, wanted / 10);
  std::printf("killed at any moment: %d trials, %d of them in time, 0 lost, 0 damaged\n", wanted,
              killed);
}

// A new index may be there without documents. The next run makes it whole.
TEST_F(KillTest, LeavesNoneOrAnEmptyOrTheNewIndexWhereThereWasNone) {
  const Arguments change{"index", "fresh.index", "new"};
  ASSERT_EQ(Run(change).status, 0);
  const std::string changed = Visible("fresh.index");
  for (int nth = 1;; nth += stride_) {
    std::filesystem::remove_all(Path("fresh.index"));
    const TempDir streams;
    const bool killed = KillBefore(Start(change, streams, BeTraced), nth);
    const std::string now = Visible("fresh.index");
    ASSERT_TRUE(now == "none" || now.empty() || now == changed) << nth << ": " << now;
    ASSERT_EQ(Run(change).status, 0) << nth;
    ASSERT_EQ(Visible("fresh.index"), changed) << nth;
    ASSERT_EQ(FindingsIn("fresh.index"), "") << nth;
    if (!killed) break;
  }
}

}  // namespace
}  // namespace kestan_tests
