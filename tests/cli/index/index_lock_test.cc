// Whoever changes an index keeps the others out, and no update that was reported is lost.
#include "cli/index/index_lock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <string>
#include <vector>

#include "tests/cli/sync/changed_index_test.h"
#include "tests/cli/traced_command.h"

namespace kestan_tests {
namespace {

bool IsLocking(const Call& call) {
#ifdef SYS_fcntl64
  if (call.number == SYS_fcntl64 && call.Argument(1) == F_OFD_SETLK) return true;
#endif
  return call.number == SYS_flock || (call.number == SYS_fcntl && call.Argument(1) == F_OFD_SETLK);
}

class IndexLockTest : public ChangedIndexTest {
 protected:
  static Arguments Titling(const std::string& name, bool in_place) {
    Arguments arguments{"title", "set", "my.index", name, "Set " + name};
    if (in_place) arguments.push_back("--in-place");
    return arguments;
  }

  bool HasTitle(const std::string& name) {
    return Run({"title", "get", "my.index", name}) == Success("Set " + name + "\n");
  }

  // Holds a change up before its `nth` locking call, while another change runs.
  //   Returns  false if there is no such call.
  bool HoldUp(int nth, bool first_in_place, bool second_in_place) {
    Reset();
    const TempDir streams;
    const pid_t child = Start(Titling("old/a", first_in_place), streams, BeTraced);
    const bool held =
        StopBefore(child, [&](const Call& call) { return IsLocking(call) && nth-- == 0; });
    if (!held) return false;
    const int second = Run(Titling("old/b", second_in_place)).status;
    const int first = Resume(child);
    EXPECT_TRUE(first == 0 || first == 75) << first;
    EXPECT_TRUE(second == 0 || second == 75) << second;
    EXPECT_TRUE(first == 0 || second == 0);
    EXPECT_EQ(HasTitle("old/a"), first == 0);
    EXPECT_EQ(HasTitle("old/b"), second == 0);
    return true;
  }
};

TEST_F(IndexLockTest, NoReportedChangeIsLostWhereverTheOtherIsDelayed) {
  for (const bool first_in_place : {false, true}) {
    for (const bool second_in_place : {false, true}) {
      int nth = 0;
      while (HoldUp(nth, first_in_place, second_in_place)) {
        ASSERT_FALSE(HasFailure()) << "first in place: " << first_in_place
                                   << ", second in place: " << second_in_place << ", call " << nth;
        ++nth;
      }
      EXPECT_GT(nth, 2);
    }
  }
}

// A host writes the index through the library, and knows nothing of the command's lock.
void WriteAsHost(const std::string& path) {
  BeTraced();
  raise(SIGSTOP);
  Kestan engine;
  const bool written = engine.OpenIndex(path.c_str(), 1) == 0 &&
                       engine.DBPutTitle("old/a", "Set old/a") == 0 && engine.CloseIndex() == 0;
  _exit(written ? 0 : 1);
}

TEST_F(IndexLockTest, DelayedHostWritesTheIndexThatReplacedItsOwn) {
  const pid_t host = fork();
  if (host == 0) WriteAsHost(Path("my.index"));
  ASSERT_TRUE(StopBefore(host, [](const Call& call) { return call.number == SYS_flock; }));
  EXPECT_EQ(Run(Titling("old/b", false)).status, 0);
  EXPECT_EQ(Resume(host), 0);
  EXPECT_TRUE(HasTitle("old/a"));
  EXPECT_TRUE(HasTitle("old/b"));
}

TEST_F(IndexLockTest, ChangesOnACopyKeepChangesInPlaceOut) {
  const TempDir streams;
  const pid_t child = Start(Titling("old/a", false), streams, BeTraced);
  ASSERT_TRUE(StopBefore(child, IsRename));
  for (Arguments change : Changes()) {
    change.push_back("--in-place");
    EXPECT_EQ(Run(change).status, 75) << change.front();
  }
  EXPECT_EQ(Resume(child), 0);
  EXPECT_TRUE(HasTitle("old/a"));
}

TEST_F(IndexLockTest, ReadersAreNotAffectedByATransaction) {
  const TempDir streams;
  const pid_t child = Start(Titling("old/a", false), streams, BeTraced);
  ASSERT_TRUE(StopBefore(child, IsRename));
  EXPECT_EQ(Run({"list", "my.index"}), Success("old/a\nold/b\n"));
  EXPECT_EQ(Run({"copy", "my.index", "b"}).status, 0);
  EXPECT_EQ(Resume(child), 0);
}

TEST_F(IndexLockTest, SecondOfTwoThatMakeAnIndexInPlaceGetsStatusBusy) {
  const TempDir streams;
  const Arguments making{"index", "made", "new", "--in-place"};
  const pid_t child = Start(making, streams, BeTraced);
  ASSERT_TRUE(StopBefore(child, [](const Call& call) {
    return call.number == SYS_openat && (call.Argument(2) & O_CREAT) != 0;
  }));
  EXPECT_EQ(Run({"index", "made", "old", "--in-place"}).status, 0);
  EXPECT_EQ(Resume(child), 75);
  EXPECT_EQ(Run({"list", "made"}).out.find("new"), std::string::npos);
}

}  // namespace
}  // namespace kestan_tests
