// A change of an index happens as a whole or not at all.
#include "cli/index/index_transaction.h"

#include <sys/mount.h>
#include <sys/resource.h>

#include <string>

#include "tests/cli/sync/changed_index_test.h"
#include "tests/cli/traced_command.h"

namespace kestan_tests {
namespace {

using IndexTransactionTest = ChangedIndexTest;

TEST_F(IndexTransactionTest, LeavesNothingBesideTheIndex) {
  for (const Arguments& change : Changes()) {
    Reset();
    EXPECT_EQ(Run(change).status, 0) << change.front();
    EXPECT_TRUE(Leftovers().empty()) << change.front();
    EXPECT_NE(Dump(Path("my.index")), Dump(Path("base.index"))) << change.front();
  }
}

TEST_F(IndexTransactionTest, InPlaceMakesTheSameIndexAndReportsTheRisk) {
  for (Arguments change : Changes()) {
    Reset();
    ASSERT_EQ(Run(change).status, 0);
    const Records whole = RecordsOf("my.index");
    Reset();
    change.push_back("--in-place");
    const Outcome outcome = Run(change);
    EXPECT_EQ(outcome.status, 0) << outcome;
    EXPECT_EQ(outcome.err,
              "kestan: changing index 'my.index' in place: it can be damaged if this is ended "
              "early\n");
    EXPECT_EQ(RecordsOf("my.index"), whole) << change.front();
  }
}

TEST_F(IndexTransactionTest, ReadersKeepTheOldIndex) {
  Database reader;
  ASSERT_EQ(reader.Open(Path("my.index").c_str(), 0), 0);
  ASSERT_EQ(Run({"remove", "my.index", "old/a"}).status, 0);
  DBDatumPtr value;
  EXPECT_EQ(reader.Get(&value, Datum("d-old/a")), 0);
  EXPECT_EQ(Run({"list", "my.index"}), Success("old/b\n"));
}

TEST_F(IndexTransactionTest, SecondWriterGetsStatusBusy) {
  const TempDir streams;
  const pid_t first = Start({"remove", "my.index", "old/a"}, streams, BeTraced);
  ASSERT_TRUE(StopBefore(first, IsRename));
  for (const Arguments& change : Changes()) {
    const Outcome outcome = Run(change);
    EXPECT_EQ(outcome.status, 75);
    EXPECT_EQ(outcome.err,
              "kestan: cannot change index 'my.index': another process is changing it; try again "
              "later\n");
  }
  EXPECT_EQ(RecordsOf("my.index"), RecordsOf("base.index"));
  EXPECT_EQ(Resume(first), 0);
}

TEST_F(IndexTransactionTest, HostThatHasTheIndexOpenKeepsTransactionsOut) {
  Database host;
  ASSERT_EQ(host.Open(Path("my.index").c_str(), 1), 0);
  for (const Arguments& change : Changes()) EXPECT_EQ(Run(change).status, 75) << change.front();
  host.Close();
  EXPECT_EQ(RecordsOf("my.index"), RecordsOf("base.index"));
}

TEST_F(IndexTransactionTest, FollowsLinksToTheIndex) {
  std::filesystem::create_symlink("my.index", Path("link"));
  std::filesystem::create_symlink(Path("link"), Path("link to link"));
  ASSERT_EQ(Run({"remove", "link to link", "old/a"}).status, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link")));
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link to link")));
  EXPECT_EQ(Run({"list", "my.index"}), Success("old/b\n"));
}

TEST_F(IndexTransactionTest, MakesANewIndexThroughALink) {
  std::filesystem::create_symlink("made.index", Path("link"));
  ASSERT_EQ(Run({"index", "link", "new"}).status, 0);
  EXPECT_TRUE(std::filesystem::is_regular_file(Path("made.index")));
}

TEST_F(IndexTransactionTest, ReadOnlyDirectoryIsAnError) {
  OpenFolderToAll(0555);
  ASSERT_EQ(chmod(Path("my.index").c_str(), 0666), 0);
  const Outcome outcome = Run({"shrink", "my.index"}, GiveUpPrivileges);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err,
            "kestan: cannot change index 'my.index': cannot make a folder beside it: permission "
            "denied\n");
  EXPECT_EQ(Run({"option", "set", "my.index", "4", "--in-place"}, GiveUpPrivileges).status, 0);
}

// ---- No room ----

// With a lower limit on the size of files, the messages of the command are cut off too.
constexpr std::uintmax_t kRoomForMessages = 4096;

class FullDiskTest : public ChangedIndexTest {
 protected:
  // Runs each change, which must work as a whole or leave the index as it was, with more and more
  // room: `step` bytes more each time. `limit` takes the room away, in the child or before it
  // starts; `lift` gives it back.
  template <typename Limit, typename Lift>
  void ExpectWholeOrNothing(std::uintmax_t step, Limit limit, Lift lift) {
    int steps = 0;
    for (const Arguments& change : Changes()) {
      int failures = 0;
      while (!WorksOrChangesNothing(change, step * static_cast<unsigned>(failures), limit, lift)) {
        ++failures;
      }
      EXPECT_GT(failures, 0) << change.front();
      steps += failures + 1;
      if (HasFatalFailure()) return;
    }
    std::printf("full disk: %d steps, 0 lost, 0 damaged\n", steps);
  }

 private:
  template <typename Limit, typename Lift>
  bool WorksOrChangesNothing(const Arguments& change, std::uintmax_t room, Limit limit, Lift lift) {
    lift();
    Reset();
    const std::string before = IndexBytes();
    const Outcome outcome = Run(change, limit(room));
    if (outcome.status == 0 || HasFailure()) return true;
    EXPECT_EQ(outcome.status, 2) << outcome;
    EXPECT_EQ(IndexBytes(), before) << change.front() << " with room for " << room;
    EXPECT_TRUE(Leftovers().empty()) << Leftovers().front();
    EXPECT_EQ(outcome.out, "");
    if (room >= kRoomForMessages) {
      EXPECT_EQ(outcome.err.rfind("kestan: cannot ", 0), 0u) << outcome;
      EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome;
    }
    return false;
  }
};

TEST_F(FullDiskTest, LimitOnTheFileLeavesTheOldIndexOrMakesTheNewOne) {
  const auto limit_in_child = [](std::uintmax_t room) {
    return [room] {
      const rlimit limit{static_cast<rlim_t>(room), static_cast<rlim_t>(room)};
      if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(127);
    };
  };
  ExpectWholeOrNothing(512, limit_in_child, [] {});
}

// A file system of its own, as large as the test says.
class SmallDisk {
 public:
  explicit SmallDisk(std::string path) : path_(std::move(path)) {
    is_there_ = mount("none", path_.c_str(), "tmpfs", 0, "size=64m") == 0;
  }
  ~SmallDisk() {
    if (is_there_) umount(path_.c_str());
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

  bool is_there() const { return is_there_; }

  // Leaves room for `bytes` more than there is on it.
  void LeaveRoom(std::uintmax_t bytes) const {
    const std::filesystem::space_info space = std::filesystem::space(path_);
    const std::uintmax_t size = space.capacity - space.free + bytes;
    const std::string option = "size=" + std::to_string(size);
    ASSERT_EQ(mount("none", path_.c_str(), "tmpfs", MS_REMOUNT, option.c_str()), 0);
  }
  void LeaveMuchRoom() const { LeaveRoom(64 << 20); }

 private:
  const std::string path_;
  bool is_there_ = false;
};

TEST_F(FullDiskTest, DiskThatFillsLeavesTheOldIndexOrMakesTheNewOne) {
  const SmallDisk disk(Path(""));
  if (!disk.is_there()) GTEST_SKIP() << "no right to mount a file system";
  SetUp();  // the folder is another one now
  const auto limit = [&](std::uintmax_t room) -> InChild {
    disk.LeaveRoom(room);
    // Where gdbm cannot reorganise for lack of room, it leaves 512 bytes of its own behind.
    return [] { setenv("ASAN_OPTIONS", "detect_leaks=0", 1); };
  };
  ExpectWholeOrNothing(4096, limit, [&] { disk.LeaveMuchRoom(); });
  disk.LeaveMuchRoom();
}

}  // namespace
}  // namespace kestan_tests
