// SPDX-License-Identifier: GPL-3.0-or-later
// Owner, group and permissions of an index through its changes, and who is protected from whom.
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/cli/index_folder_test.h"

namespace kestan_tests {
namespace {

namespace fs = std::filesystem;
using Arguments = std::vector<std::string>;

constexpr uid_t kAlice = 65001;
constexpr uid_t kBob = 65002;
constexpr uid_t kCarol = 65003;
constexpr gid_t kProject = 65010;
constexpr const char* kListForNewFiles = "system.posix_acl_default";

// Becomes `user`, who has a group of that number and is a member of the project, or not.
auto As(uid_t user, bool is_member) {
  return [user, is_member] {
    umask(022);
    if (setgroups(is_member ? 1 : 0, &kProject) != 0) _exit(127);
    if (setgid(user) != 0 || setuid(user) != 0) _exit(127);
  };
}

void AppendNumber(std::uint32_t number, int bytes, std::string* text) {
  for (int i = 0; i < bytes; ++i) *text += static_cast<char>(number >> 8 * i & 0xff);
}

// An access control list as the system keeps it: all rights for the owner, for `user` and for the
// group, none for others.
std::string ListWith(uid_t user) {
  constexpr std::uint32_t kNobody = 0xffffffff;
  std::string list;
  AppendNumber(2, 4, &list);
  for (const auto& [tag, rights, id] :
       std::vector<std::tuple<int, int, std::uint32_t>>{{0x01, 7, kNobody},
                                                        {0x02, 7, user},
                                                        {0x04, 7, kNobody},
                                                        {0x10, 7, kNobody},
                                                        {0x20, 0, kNobody}}) {
    AppendNumber(static_cast<std::uint32_t>(tag), 2, &list);
    AppendNumber(static_cast<std::uint32_t>(rights), 2, &list);
    AppendNumber(id, 4, &list);
  }
  return list;
}

class AccessRightsTest : public IndexFolderTest {
 protected:
  void SetUp() override {
    Write("old/a", "Title of a\nsome words of the first document\n");
    ASSERT_EQ(Run({"index", "base.index", "old"}).status, 0);
    Write("old/b", "Title of b\nsome other words\n");
    ASSERT_EQ(Run({"index", "base.index", "old"}).status, 0);
    ASSERT_TRUE(fs::exists(Path("base.index/2.segment")));
    Write("new/d", "to add\n");
    Reset();
  }

  // Puts my.index back as it was, and removes what was made of it.
  void Reset() {
    std::vector<fs::path> made;
    for (const auto& entry : fs::directory_iterator(Path(""))) {
      const std::string name = entry.path().filename();
      if (name.rfind("my.index", 0) == 0) made.push_back(entry.path());
    }
    for (const fs::path& path : made) fs::remove_all(path);
    fs::copy(Path("base.index"), Path("my.index"), fs::copy_options::recursive);
  }

  // The same, as an index of `user` and `group` with a folder of this mode.
  void Give(uid_t user, gid_t group, mode_t mode) {
    Reset();
    ASSERT_EQ(chown(Path("my.index").c_str(), user, group), 0);
    ASSERT_EQ(chmod(Path("my.index").c_str(), mode), 0);
    for (const std::string& file : FilesOf("my.index")) {
      ASSERT_EQ(chown(Path(file).c_str(), user, group), 0);
      ASSERT_EQ(chmod(Path(file).c_str(), mode & 0666), 0);
    }
  }

  std::vector<std::string> FilesOf(const std::string& index) const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(Path(index))) {
      names.push_back(index + "/" + entry.path().filename().string());
    }
    return names;
  }

  struct stat StatusOf(const std::string& name) const {
    struct stat status {};
    EXPECT_EQ(stat(Path(name).c_str(), &status), 0) << name;
    return status;
  }
  mode_t ModeOf(const std::string& name) const { return StatusOf(name).st_mode & 07777; }

  // Every command that changes an index.
  static std::vector<Arguments> Changes() {
    return {{"index", "my.index", "new"},
            {"remove", "my.index", "old/a"},
            {"move", "my.index", "old/a", "old/z"},
            {"title", "set", "my.index", "old/a", "Another title"},
            {"wordlist", "put", "my.index", "colours", "red", "green"},
            {"option", "set", "my.index", "1"},
            {"compact", "my.index"}};
  }

  // Every command that makes an index folder of another one, my.index.n of my.index.
  static std::vector<Arguments> Makers() {
    return {{"copy", "my.index", "my.index.n"}, {"repair", "my.index", "my.index.n"}};
  }

  // Expects the folder of `index` to have this mode, and all files in it the rights that go with
  // it.
  void ExpectMode(const std::string& index, mode_t mode, const std::string& what) const {
    EXPECT_EQ(ModeOf(index), mode) << what;
    for (const std::string& file : FilesOf(index)) {
      EXPECT_EQ(ModeOf(file), mode & 0666) << what << " " << file;
    }
  }
};

TEST_F(AccessRightsTest, ChangesKeepTheModeWhateverTheMaskSays) {
  for (const mode_t mode : {0700U, 0750U, 0755U, 0770U, 0777U, 0705U}) {
    for (const Arguments& change : Changes()) {
      Give(geteuid(), getegid(), mode);
      ASSERT_EQ(Run(change, [] { umask(027); }).status, 0) << change.front();
      ExpectMode("my.index", mode, change.front());
    }
  }
}

TEST_F(AccessRightsTest, WhatIsMadeOfAnIndexHasItsMode) {
  for (const mode_t mode : {0700U, 0750U, 0755U, 0770U, 0777U, 0705U}) {
    for (const Arguments& command : Makers()) {
      Give(geteuid(), getegid(), mode);
      ASSERT_EQ(Run(command, [] { umask(022); }).status, 0) << command.front();
      ExpectMode("my.index.n", mode, command.front());
    }
  }
}

TEST_F(AccessRightsTest, WhomTheFolderDoesNotLetInTheNewOneDoesNotEither) {
  for (const mode_t mode : {0744U, 0766U, 0740U}) {
    for (const Arguments& command : Makers()) {
      Give(geteuid(), getegid(), mode);
      ASSERT_EQ(Run(command).status, 0) << command.front();
      ExpectMode("my.index.n", 0700, command.front());
    }
  }
}

TEST_F(AccessRightsTest, BitsThatLendRightsAreNotCarried) {
  for (const Arguments& command : Makers()) {
    Reset();
    ASSERT_EQ(chmod(Path("my.index").c_str(), 07755), 0);
    ASSERT_EQ(Run(command).status, 0) << command.front();
    EXPECT_EQ(ModeOf("my.index.n") & 06000, 0u) << command.front();
  }
}

TEST_F(AccessRightsTest, FilesThatAreClosedToSomeStayClosedInWhatIsMade) {
  for (const Arguments& command : Makers()) {
    Give(geteuid(), getegid(), 0755);
    ASSERT_EQ(chmod(Path("my.index/MANIFEST").c_str(), 0640), 0);
    ASSERT_EQ(Run(command).status, 0) << command.front();
    ExpectMode("my.index.n", 0750, command.front());
  }
}

TEST_F(AccessRightsTest, ListOfTheFolderAroundGivesNobodyMore) {
  const std::string list = ListWith(kBob);
  if (setxattr(Path("").c_str(), kListForNewFiles, list.data(), list.size(), 0) != 0) {
    GTEST_SKIP() << "no access control lists here";
  }
  for (const Arguments& command : Makers()) {
    ASSERT_EQ(removexattr(Path("").c_str(), kListForNewFiles), 0);
    Give(geteuid(), getegid(), 0750);
    ASSERT_EQ(setxattr(Path("").c_str(), kListForNewFiles, list.data(), list.size(), 0), 0);
    ASSERT_EQ(Run(command).status, 0) << command.front();
    ExpectMode("my.index.n", 0750, command.front());
    std::vector<std::string> made = FilesOf("my.index.n");
    made.emplace_back("my.index.n");
    for (const std::string& name : made) {
      const std::string path = Path(name);
      EXPECT_LE(getxattr(path.c_str(), "system.posix_acl_access", nullptr, 0), 0) << name;
      EXPECT_LE(getxattr(path.c_str(), kListForNewFiles, nullptr, 0), 0) << name;
    }
  }
}

// ---- Without the permission ----

TEST_F(AccessRightsTest, IndexInAReadOnlyFolderCanOnlyBeRead) {
  OpenFolderToAll(0755);
  Give(geteuid(), getegid(), 0555);
  const std::string before = BytesOfFile(Path("my.index/MANIFEST"));
  for (const Arguments& change : Changes()) {
    const Outcome outcome = Run(change, GiveUpPrivileges);
    EXPECT_EQ(outcome.status, 2) << change.front() << outcome;
    EXPECT_NE(outcome.err.find("ermission denied"), std::string::npos) << outcome;
  }
  EXPECT_EQ(BytesOfFile(Path("my.index/MANIFEST")), before);
  EXPECT_EQ(Run({"list", "my.index"}, GiveUpPrivileges), Success("old/a\nold/b\n"));
  ASSERT_EQ(chmod(Path("my.index").c_str(), 0755), 0);
}

TEST_F(AccessRightsTest, ReadOnlyFolderTakesNoNewIndex) {
  OpenFolderToAll(0555);
  EXPECT_EQ(Run({"index", "made", "new"}, GiveUpPrivileges),
            Failure("cannot make index 'made': permission denied"));
  OpenFolderToAll(0755);
  EXPECT_FALSE(fs::exists(Path("made")));
}

TEST_F(AccessRightsTest, NewIndexNeedsAFolderAround) {
  EXPECT_EQ(Run({"index", "nowhere/made", "new"}),
            Failure("cannot make index 'nowhere/made': no such file or folder"));
  EXPECT_EQ(Run({"index", "", "new"}).status, 2);
}

TEST_F(AccessRightsTest, UnreadableIndexIsAnError) {
  OpenFolderToAll(0755);
  Give(geteuid(), getegid(), 0700);
  for (const Arguments& command :
       std::vector<Arguments>{{"list", "my.index"}, {"stats", "my.index"}, {"check", "my.index"}}) {
    const Outcome outcome = Run(command, GiveUpPrivileges);
    EXPECT_EQ(outcome.status, 2) << outcome;
    EXPECT_NE(outcome.err.find("ermission denied"), std::string::npos) << outcome;
  }
}

// ---- Other users ----

class OtherUsersTest : public AccessRightsTest {
 protected:
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "only a superuser can become several users";
    AccessRightsTest::SetUp();
    ASSERT_EQ(chown(Path("").c_str(), kAlice, kProject), 0);
    OpenFolderToAll(0770);
  }
};

TEST_F(OtherUsersTest, ChangeByAnotherMemberKeepsGroupAndMode) {
  for (const Arguments& change : Changes()) {
    Give(kAlice, kProject, 0770);
    ASSERT_EQ(Run(change, As(kBob, true)).status, 0) << change.front();
    EXPECT_EQ(StatusOf("my.index").st_uid, kAlice);
    EXPECT_EQ(StatusOf("my.index/MANIFEST").st_uid, kBob);
    for (const std::string& file : FilesOf("my.index")) {
      EXPECT_EQ(StatusOf(file).st_gid, kProject) << change.front() << " " << file;
    }
    ExpectMode("my.index", 0770, change.front());
    EXPECT_EQ(Run({"title", "set", "my.index", "old/b", "Mine"}, As(kAlice, true)).status, 0);
  }
}

TEST_F(OtherUsersTest, ChangeByTheSuperuserLeavesAllToTheOwnerOfTheFolder) {
  for (const Arguments& change : Changes()) {
    Give(kAlice, kProject, 0750);
    fs::remove(Path("my.index/writer.lock"));
    ASSERT_EQ(Run(change).status, 0) << change.front();
    for (const std::string& file : FilesOf("my.index")) {
      EXPECT_EQ(StatusOf(file).st_uid, kAlice) << change.front() << " " << file;
      EXPECT_EQ(StatusOf(file).st_gid, kProject) << change.front() << " " << file;
    }
    ExpectMode("my.index", 0750, change.front());
    EXPECT_EQ(Run({"title", "set", "my.index", "old/b", "Mine"}, As(kAlice, false)).status, 0);
  }
}

TEST_F(OtherUsersTest, WhatTheSuperuserDoesBarsNobody) {
  OpenFolderToAll(0777);
  Give(kAlice, kAlice, 0700);
  ASSERT_EQ(Run({"index", "my.index", "missing"}).status, 2);
  ASSERT_EQ(Run({"title", "set", "my.index", "old/a", "Root's"}).status, 0);
  EXPECT_EQ(Run({"remove", "my.index", "old/a"}, As(kAlice, false)).status, 0);
}

// Members of a group that the files have lost count among all others.
TEST_F(OtherUsersTest, GroupThatCannotBeKeptGivesNobodyMore) {
  OpenFolderToAll(0777);
  const std::vector<std::pair<mode_t, mode_t>> modes{
      {0777, 0666}, {0757, 0644}, {0717, 0600}, {0707, 0606}};
  for (const auto& [folder, file] : modes) {
    Give(kAlice, kProject, folder);
    ASSERT_EQ(Run({"remove", "my.index", "old/a"}, As(kBob, false)).status, 0);
    EXPECT_EQ(StatusOf("my.index/MANIFEST").st_gid, kBob);
    EXPECT_EQ(ModeOf("my.index/MANIFEST"), file) << std::oct << folder;
    EXPECT_EQ(ModeOf("my.index"), folder);
  }
}

TEST_F(OtherUsersTest, StrangersChangeAnIndexThatIsOpenToAll) {
  OpenFolderToAll(0777);
  Give(kAlice, kProject, 0777);
  fs::remove(Path("my.index/writer.lock"));
  for (const uid_t user : {kBob, kCarol, kAlice}) {
    EXPECT_EQ(Run({"title", "set", "my.index", "old/a", "Mine"}, As(user, false)).status, 0);
  }
}

TEST_F(OtherUsersTest, WhatIsMadeGivesNobodyMore) {
  OpenFolderToAll(0777);
  for (const Arguments& command : Makers()) {
    Give(kAlice, kProject, 0750);
    ASSERT_EQ(Run(command, As(kBob, true)).status, 0);
    EXPECT_EQ(StatusOf("my.index.n").st_uid, kBob);
    EXPECT_EQ(StatusOf("my.index.n").st_gid, kProject);
    EXPECT_EQ(StatusOf("my.index.n/MANIFEST").st_gid, kProject);
    ExpectMode("my.index.n", 0750, command.front());
    Give(kAlice, kProject, 0705);
    ASSERT_EQ(Run(command, As(kBob, false)).status, 0);
    EXPECT_EQ(StatusOf("my.index.n").st_gid, kBob);
    ExpectMode("my.index.n", 0700, command.front());
    Give(kAlice, kProject, 0755);
    ASSERT_EQ(Run(command, As(kBob, false)).status, 0);
    ExpectMode("my.index.n", 0755, command.front());
  }
}

TEST_F(OtherUsersTest, LinksOfOthersAtTheNewNameLeadTheSuperuserNowhere) {
  OpenFolderToAll(0777);
  Write("precious/staging.lock", "");
  Write("precious/MANIFEST", "mine");
  Write("precious/1.segment", "mine");
  MakeOneFileIndex();
  Write("my.dump", Run({"dump", "my.index"}).out);
  const std::vector<Arguments> makers{{"copy", "my.index", "made"},
                                      {"repair", "my.index", "made"},
                                      {"convert", "one.index", "made"},
                                      {"load", "made", "my.dump"},
                                      {"compact", "my.index", "--one-file", "made"}};
  for (const char* target : {"precious", "nowhere", "precious/MANIFEST"}) {
    fs::remove(Path("made.new"));
    fs::create_symlink(target, Path("made.new"));
    for (const Arguments& command : makers) {
      const Outcome outcome = Run(command);
      EXPECT_EQ(outcome.status, 2) << command.front() << outcome;
      EXPECT_NE(outcome.err.find("there is something already"), std::string::npos) << outcome;
      EXPECT_FALSE(fs::exists(Path("made"))) << command.front();
    }
    EXPECT_TRUE(fs::is_symlink(Path("made.new")));
  }
  EXPECT_EQ(BytesOfFile(Path("precious/MANIFEST")), "mine");
  EXPECT_EQ(BytesOfFile(Path("precious/1.segment")), "mine");
  EXPECT_TRUE(fs::exists(Path("precious/staging.lock")));
  EXPECT_FALSE(fs::exists(Path("nowhere")));
}

TEST_F(OtherUsersTest, WhatAnotherUserLeftAtTheNewNameStays) {
  OpenFolderToAll(0777);
  Write("my.index.n.new/staging.lock", "");
  Write("my.index.n.new/MANIFEST", "theirs");
  ASSERT_EQ(chown(Path("my.index.n.new").c_str(), kBob, kBob), 0);
  EXPECT_EQ(Run({"copy", "my.index", "my.index.n"}).status, 2);
  EXPECT_EQ(BytesOfFile(Path("my.index.n.new/MANIFEST")), "theirs");
}

TEST_F(OtherUsersTest, LinksInTheIndexLeadTheSuperuserNowhere) {
  Write("precious", "mine");
  ASSERT_EQ(chmod(Path("precious").c_str(), 0600), 0);
  for (const char* name : {"MANIFEST.new", "3.segment", "3.terms", "3.documents", "1-1.edits"}) {
    for (const Arguments& change : Changes()) {
      Give(kAlice, kProject, 0770);
      fs::create_symlink(Path("precious"), Path(std::string("my.index/") + name));
      Run(change);
      EXPECT_EQ(BytesOfFile(Path("precious")), "mine") << name << " " << change.front();
      EXPECT_EQ(ModeOf("precious"), 0600u) << name << " " << change.front();
      EXPECT_EQ(StatusOf("precious").st_uid, 0u) << name << " " << change.front();
      EXPECT_EQ(Run({"check", "my.index"}).status, 0) << name << " " << change.front();
    }
  }
}

TEST_F(OtherUsersTest, LinkAtTheLockLeadsNowhere) {
  Write("precious", "mine");
  for (const bool is_hard : {false, true}) {
    for (const Arguments& change : Changes()) {
      Give(kAlice, kProject, 0770);
      const fs::path lock = Path("my.index/writer.lock");
      fs::remove(lock);
      if (is_hard) {
        fs::create_hard_link(Path("precious"), lock);
      } else {
        fs::create_symlink(Path("precious"), lock);
      }
      const struct stat before = StatusOf("precious");
      EXPECT_EQ(Run(change).status, 2) << change.front();
      EXPECT_EQ(BytesOfFile(Path("precious")), "mine") << change.front();
      EXPECT_EQ(StatusOf("precious").st_mode, before.st_mode) << change.front();
      EXPECT_EQ(StatusOf("precious").st_uid, before.st_uid) << change.front();
      EXPECT_EQ(Run({"list", "my.index"}), Success("old/a\nold/b\n"));
    }
  }
}

TEST_F(OtherUsersTest, LockThatLeadsToAMissingFileMakesNone) {
  Give(kAlice, kProject, 0770);
  fs::remove(Path("my.index/writer.lock"));
  fs::create_symlink(Path("nowhere"), Path("my.index/writer.lock"));
  EXPECT_EQ(Run({"remove", "my.index", "old/a"}).status, 2);
  EXPECT_FALSE(fs::exists(Path("nowhere")));
}

}  // namespace
}  // namespace kestan_tests
