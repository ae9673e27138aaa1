// What lies beside an index: foreign files stay as they are, what the command left behind goes.
#include "cli/files/work_directory.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>

#include <array>
#include <fstream>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "tests/cli/sync/changed_index_test.h"
#include "tests/cli/traced_command.h"

namespace kestan_tests {
namespace {

namespace fs = std::filesystem;

// Everything about a file that a command could change. The time of the last look may change.
using FileState = std::tuple<ino_t, mode_t, nlink_t, uid_t, off_t, time_t, long, std::string>;

FileState StateOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
  std::string content;
  const bool is_readable = S_ISREG(status.st_mode) && access(path.c_str(), R_OK) == 0;
  if (is_readable) content = BytesOfFile(path);
  if (S_ISLNK(status.st_mode)) content = fs::read_symlink(path);
  return {status.st_ino,  status.st_mode,        status.st_nlink,        status.st_uid,
          status.st_size, status.st_ctim.tv_sec, status.st_ctim.tv_nsec, content};
}

// ---- Files of every kind, made at a path ----

using Maker = void (*)(const std::string& path);

void Fill(const std::string& path, const std::string& text) {
  std::ofstream file(path);
  file << text;
  ASSERT_TRUE(file.good()) << path;
}
void MakeText(const std::string& path) { Fill(path, "not yours"); }
void MakeEmpty(const std::string& path) { Fill(path, ""); }
void MakeEmptyFolder(const std::string& path) { fs::create_directory(path); }
void MakeFolder(const std::string& path) {
  MakeEmptyFolder(path);
  Fill(path + "/file", "not yours");
}
void MakeLink(const std::string& path) { fs::create_symlink("target", path); }
void MakeLinkToFolder(const std::string& path) { fs::create_symlink("old", path); }
void MakeDanglingLink(const std::string& path) { fs::create_symlink("nowhere", path); }
void MakeHardLink(const std::string& path) {
  fs::create_hard_link(fs::path(path).replace_filename("target"), path);
}
void MakePipe(const std::string& path) { ASSERT_EQ(mkfifo(path.c_str(), 0600), 0); }
void MakeSocket(const std::string& path) {
  const int file = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ASSERT_LT(path.size(), sizeof address.sun_path);
  path.copy(address.sun_path, path.size());
  ASSERT_EQ(bind(file, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  close(file);
}
void MakeUnreadable(const std::string& path) {
  MakeText(path);
  ASSERT_EQ(chmod(path.c_str(), 0), 0);
}
void MakeFileOfAnotherUser(const std::string& path) {
  MakeEmpty(path);
  const bool is_superuser = geteuid() == 0;  // anyone else makes an empty file of his own
  ASSERT_EQ(is_superuser ? chown(path.c_str(), 65001, 65001) : 0, 0);
}
void MakeDevice(const std::string& path) {
  const bool made = mknod(path.c_str(), S_IFCHR | 0600, makedev(1, 3)) == 0;
  if (!made) MakePipe(path);  // without the right to make one
}

constexpr std::array kMakers{MakeText,     MakeEmpty,  MakeFolder,       MakeEmptyFolder,
                             MakeLink,     MakePipe,   MakeLinkToFolder, MakeDanglingLink,
                             MakeHardLink, MakeSocket, MakeUnreadable,   MakeFileOfAnotherUser,
                             MakeDevice};

class WorkDirectoryTest : public ChangedIndexTest {
 protected:
  // Every command that makes, replaces or removes a file, some of which fail.
  static std::vector<Arguments> Commands() {
    std::vector<Arguments> commands = Changes();
    for (Arguments change : Changes()) {
      change.push_back("--in-place");
      commands.push_back(change);
    }
    const std::vector<Arguments> others{
        {"index", "my.index", "missing"},        {"remove", "my.index", "missing"},
        {"index", "my.index.made", "new"},       {"copy", "my.index", "my.index.copy"},
        {"repair", "my.index", "my.index.good"}, {"load", "my.index.loaded", "my.dump"},
        {"load", "my.index.bad", "old/a"},       {"copy", "old/a", "my.index.bad"},
        {"copy", "my.index", "my.index.lock"},   {"shrink", "-n", "my.index"}};
    commands.insert(commands.end(), others.begin(), others.end());
    return commands;
  }

  // Puts files of one kind under every name near that of each index that Commands() know.
  std::vector<std::string> Plant(Maker make) {
    std::vector<std::string> planted;
    for (const char* index : {"", ".made", ".copy", ".good", ".loaded", ".bad"}) {
      for (const char* end :
           {".lock", ".kestan-new", ".kestan-new.abcdef", ".kestan-new.0123456789abcdef01234567"}) {
        planted.push_back(std::string("my.index") + index + end);
        make(Path(planted.back()));
      }
    }
    return planted;
  }

  void ExpectToStay(Maker make) {
    const std::vector<std::string> planted = Plant(make);
    std::map<std::string, FileState> before;
    for (const std::string& name : planted) before[name] = StateOf(Path(name));
    for (const Arguments& command : Commands()) {
      fs::copy_file(Path("base.index"), Path("my.index"), fs::copy_options::overwrite_existing);
      for (const char* made :
           {"my.index.made", "my.index.copy", "my.index.good", "my.index.loaded"}) {
        fs::remove(Path(made));
      }
      const Outcome outcome = Run(command);
      ASSERT_NE(outcome.status, -1) << command.front();
      for (const auto& [name, state] : before) {
        ASSERT_EQ(StateOf(Path(name)), state) << command.front() << ", " << name << outcome;
      }
    }
    EXPECT_FALSE(fs::exists(Path("nowhere")));
  }

  // Kills a change right before its last step. Returns the folder that it leaves.
  std::string LeftBehind(
      const Arguments& change, const InChild& prepare = [] {}) {
    const TempDir streams;
    const pid_t child = Start(change, streams, [&] { prepare(), BeTraced(); });
    EXPECT_TRUE(StopBefore(child, IsRename));
    EndStopped(child);
    const std::vector<std::string> left = Leftovers();
    EXPECT_EQ(left.size(), 1u);
    return left.empty() ? "" : left.front();
  }
};

TEST_F(WorkDirectoryTest, ForeignFilesStayAsTheyAre) {
  Write("my.dump", Run({"dump", "base.index"}).out);
  Write("target", "not yours");
  for (const Maker make : kMakers) {
    for (const std::string& name : Leftovers()) fs::remove_all(Path(name));
    ExpectToStay(make);
    if (HasFatalFailure()) return;
  }
}

TEST_F(WorkDirectoryTest, ForeignFilesBarNoChange) {
  for (const char* end : {".lock", ".kestan-new", ".kestan-new.abcdef"}) {
    Write(std::string("my.index") + end, "not yours");
  }
  for (const Arguments& change : Changes()) {
    fs::copy_file(Path("base.index"), Path("my.index"), fs::copy_options::overwrite_existing);
    EXPECT_EQ(Run(change).status, 0) << change.front();
  }
}

TEST_F(WorkDirectoryTest, WhatAnEndedChangeLeftGoesWithTheNext) {
  for (const Arguments& change : Changes()) {
    LeftBehind(change);
    EXPECT_EQ(Run({"title", "set", "my.index", "old/a", "Next"}).status, 0);
    EXPECT_TRUE(Leftovers().empty()) << change.front();
  }
}

TEST_F(WorkDirectoryTest, WhatAnEndedCopyLeftGoesWithTheNext) {
  LeftBehind({"copy", "my.index", "my.index.b"});
  EXPECT_EQ(Run({"copy", "my.index", "my.index.b"}).status, 0);
  EXPECT_EQ(Leftovers(), std::vector<std::string>{"my.index.b"});
}

TEST_F(WorkDirectoryTest, LeftDirectoryWithAForeignFileStaysWhole) {
  const std::string left = LeftBehind({"remove", "my.index", "old/a"});
  Write(left + "/mine", "not yours");
  EXPECT_EQ(Run({"remove", "my.index", "old/a"}).status, 0);
  EXPECT_EQ(Leftovers(), std::vector<std::string>{left});
  EXPECT_TRUE(fs::exists(Path(left + "/file")));
  EXPECT_EQ(BytesOfFile(Path(left + "/mine")), "not yours");
}

TEST_F(WorkDirectoryTest, DirectoryWithOtherCheckDigitsStays) {
  const std::string left = LeftBehind({"remove", "my.index", "old/a"});
  std::string other = left;
  other.back() = other.back() == '0' ? '1' : '0';
  fs::rename(Path(left), Path(other));
  EXPECT_EQ(Run({"remove", "my.index", "old/a"}).status, 0);
  EXPECT_EQ(Leftovers(), std::vector<std::string>{other});
}

TEST_F(WorkDirectoryTest, WhatAProcessStillWorksInStays) {
  const TempDir streams;
  const pid_t child = Start({"index", "my.index.n", "old"}, streams, BeTraced);
  ASSERT_TRUE(StopBefore(child, IsRename));
  EXPECT_EQ(Run({"index", "my.index.n", "new"}).status, 0);
  EXPECT_EQ(Leftovers().size(), 2u);
  EXPECT_EQ(Resume(child), 75);
  EXPECT_EQ(BytesOfFile(streams / "err"),
            "kestan: cannot change index 'my.index.n': another process has made it meanwhile; try "
            "again\n");
  EXPECT_EQ(Leftovers(), std::vector<std::string>{"my.index.n"});
  EXPECT_EQ(Run({"list", "my.index.n"}).out.find("old"), std::string::npos);
}

TEST_F(WorkDirectoryTest, CopyOverwritesNothingThatCameMeanwhile) {
  const TempDir streams;
  const pid_t child = Start({"copy", "my.index", "b"}, streams, BeTraced);
  ASSERT_TRUE(StopBefore(child, IsRename));
  Write("b", "not yours");
  EXPECT_EQ(Resume(child), 2);
  EXPECT_EQ(BytesOfFile(streams / "err"),
            "kestan: cannot make 'b': there is something already; choose another name\n");
  EXPECT_EQ(BytesOfFile(Path("b")), "not yours");
}

TEST_F(WorkDirectoryTest, IndexThatWasReplacedMeanwhileStays) {
  const TempDir streams;
  // Named before the change looks for the last time whether the index is in its place.
  const pid_t child = Start({"remove", "my.index", "old/a"}, streams, BeTraced);
  ASSERT_TRUE(StopBefore(child, [](const Call& call) { return call.number == SYS_mkdirat; }));
  Write("other", "not yours");
  fs::rename(Path("other"), Path("my.index"));
  EXPECT_EQ(Resume(child), 75);
  EXPECT_EQ(IndexBytes(), "not yours");
  EXPECT_TRUE(Leftovers().empty());
}

TEST_F(WorkDirectoryTest, NamesOfIndexesMayBeAsLongAsTheSystemAllows) {
  const std::string name(255, 'n');
  EXPECT_EQ(Run({"index", name, "new"}).status, 0);
  EXPECT_EQ(Run({"index", name, "old"}).status, 0);
}

TEST_F(WorkDirectoryTest, OnlyNamesThatTheCommandGivesAreKnown) {
  const std::string left = LeftBehind({"remove", "my.index", "old/a"});
  EXPECT_TRUE(kestan_cli::IsWorkDirectoryName(left));
  EXPECT_FALSE(kestan_cli::IsWorkDirectoryName("my.index"));
  EXPECT_FALSE(kestan_cli::IsWorkDirectoryName(""));
  for (std::size_t i = 0; i < left.size(); ++i) {
    std::string other = left;
    other[i] = other[i] == '7' ? '8' : '7';
    EXPECT_FALSE(kestan_cli::IsWorkDirectoryName(other)) << other;
    EXPECT_FALSE(kestan_cli::IsWorkDirectoryName(left.substr(0, i))) << i;
  }
}

// ---- Folders of other users ----

TEST_F(WorkDirectoryTest, WhatAnotherUserLeftStaysAndBarsNobody) {
  if (geteuid() != 0) GTEST_SKIP() << "only a superuser can be two users";
  const std::string left = LeftBehind({"remove", "my.index", "old/a"});
  OpenFolderToAll(0777);
  ASSERT_EQ(chmod(Path("my.index").c_str(), 0666), 0);
  EXPECT_EQ(Run({"remove", "my.index", "old/a"}, GiveUpPrivileges).status, 0);
  EXPECT_EQ(Leftovers(), std::vector<std::string>{left});
  EXPECT_EQ(Run({"remove", "my.index", "old/b"}).status, 0);
  EXPECT_TRUE(Leftovers().empty());
}

TEST_F(WorkDirectoryTest, SomebodyWhoTakesTheDirectoryAwayDoesNotTurnTheWriterElsewhere) {
  const TempDir streams;
  fs::create_directory(Path("elsewhere"));
  const pid_t child = Start({"remove", "my.index", "old/a"}, streams, BeTraced);
  bool made = false;
  ASSERT_TRUE(StopBefore(child, [&](const Call& call) {
    if (call.number == SYS_mkdirat) made = true;
    return made && call.number == SYS_fsync;
  }));
  const std::string folder = Leftovers().front();
  fs::rename(Path(folder), Path("taken"));
  fs::create_symlink("elsewhere", Path(folder));
  Resume(child);
  EXPECT_TRUE(fs::is_empty(Path("elsewhere")));
  EXPECT_TRUE(fs::is_symlink(Path(folder)));
}

}  // namespace
}  // namespace kestan_tests
