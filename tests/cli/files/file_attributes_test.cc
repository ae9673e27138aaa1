// Owner, group, mode, access control list and extended attributes of an index through its changes.
#include "cli/files/file_attributes.h"

#include <grp.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "tests/cli/sync/changed_index_test.h"

namespace kestan_tests {
namespace {

constexpr uid_t kAlice = 65001;
constexpr uid_t kBob = 65002;
constexpr gid_t kProject = 65010;
constexpr const char* kAccessList = "system.posix_acl_access";
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

// An access control list as the system keeps it: the owner's rights, those of a user, the group's,
// the most that any of the two gets, and everybody else's.
std::string AccessList(unsigned owner, uid_t user, unsigned users, unsigned group, unsigned most,
                       unsigned others) {
  std::string list;
  const auto add = [&](std::uint32_t tag, unsigned rights, std::uint32_t id) {
    AppendNumber(tag, 2, &list);
    AppendNumber(rights, 2, &list);
    AppendNumber(id, 4, &list);
  };
  constexpr std::uint32_t kNobody = 0xffffffff;
  AppendNumber(2, 4, &list);
  add(0x01, owner, kNobody);
  add(0x02, users, user);
  add(0x04, group, kNobody);
  add(0x10, most, kNobody);
  add(0x20, others, kNobody);
  return list;
}

// Has the system refuse `call` with `error` in the child.
auto Refuse(long call, int error) {
  return [call, error] {
    std::array<sock_filter, 4> steps{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(error)),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog program{steps.size(), steps.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) _exit(127);
    if (prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) _exit(127);
  };
}

class FileAttributesTest : public ChangedIndexTest {
 protected:
  struct stat StatusOf(const std::string& name) {
    struct stat status {};
    EXPECT_EQ(stat(Path(name).c_str(), &status), 0) << name;
    return status;
  }
  mode_t ModeOf(const std::string& name) { return StatusOf(name).st_mode & 07777; }

  // Puts my.index back, as a file of `user` and `group`.
  void Give(uid_t user, gid_t group, mode_t mode) {
    Reset();
    ASSERT_EQ(chown(Path("my.index").c_str(), user, group), 0);
    ASSERT_EQ(chmod(Path("my.index").c_str(), mode), 0);
  }

  bool SetAttribute(const char* name, const std::string& value) {
    return setxattr(Path("my.index").c_str(), name, value.data(), value.size(), 0) == 0;
  }

  std::string AttributeOf(const std::string& file, const char* name) {
    std::string value(1000, '\0');
    const ssize_t size = getxattr(Path(file).c_str(), name, value.data(), value.size());
    value.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
    return value;
  }

  // Every command that makes a file of another one, with the name of what it makes.
  std::vector<std::pair<Arguments, std::string>> Makers() {
    std::vector<std::pair<Arguments, std::string>> makers;
    for (const Arguments& change : Changes()) makers.emplace_back(change, "my.index");
    makers.push_back({{"copy", "my.index", "my.index.copy"}, "my.index.copy"});
    makers.push_back({{"repair", "my.index", "my.index.good"}, "my.index.good"});
    return makers;
  }
};

TEST_F(FileAttributesTest, WhatIsMadeOfAFileHasItsMode) {
  for (const mode_t mode : {0600U, 0640U, 0644U, 0660U, 0666U, 0604U}) {
    for (const auto& [command, made] : Makers()) {
      Reset();
      ASSERT_EQ(chmod(Path("my.index").c_str(), mode), 0);
      ASSERT_EQ(Run(command, [] { umask(022); }).status, 0);
      EXPECT_EQ(ModeOf(made), mode) << command.front();
    }
  }
}

TEST_F(FileAttributesTest, BitsThatLendRightsAreNotCarried) {
  for (const auto& [command, made] : Makers()) {
    Reset();
    ASSERT_EQ(chmod(Path("my.index").c_str(), 06755), 0);
    ASSERT_EQ(Run(command).status, 0);
    EXPECT_EQ(ModeOf(made), 0755u) << command.front();
  }
}

TEST_F(FileAttributesTest, NewIndexHasTheModeThatTheUserAsksFor) {
  ASSERT_EQ(Run({"index", "my.index.n", "new"}, [] { umask(027); }).status, 0);
  EXPECT_EQ(ModeOf("my.index.n"), 0640u);
}

TEST_F(FileAttributesTest, UserAttributesAreKept) {
  if (!SetAttribute("user.origin", "here")) GTEST_SKIP() << "no extended attributes here";
  for (const auto& [command, made] : Makers()) {
    Reset();
    ASSERT_TRUE(SetAttribute("user.origin", "here"));
    ASSERT_TRUE(SetAttribute("user.empty", ""));
    ASSERT_EQ(Run(command).status, 0);
    EXPECT_EQ(AttributeOf(made, "user.origin"), "here") << command.front();
    EXPECT_GE(getxattr(Path(made).c_str(), "user.empty", nullptr, 0), 0) << command.front();
  }
}

TEST_F(FileAttributesTest, AccessControlListIsKept) {
  const std::string list = AccessList(6, kBob, 6, 0, 6, 4);
  if (!SetAttribute(kAccessList, list)) GTEST_SKIP() << "no access control lists here";
  for (const auto& [command, made] : Makers()) {
    Reset();
    ASSERT_TRUE(SetAttribute(kAccessList, list));
    ASSERT_EQ(Run(command).status, 0);
    EXPECT_EQ(AttributeOf(made, kAccessList), list) << command.front();
  }
}

TEST_F(FileAttributesTest, ListThatCannotBeKeptLeavesTheOwnerAlone) {
  const std::string list = AccessList(6, kBob, 6, 0, 6, 4);
  if (!SetAttribute(kAccessList, list)) GTEST_SKIP() << "no access control lists here";
  ASSERT_EQ(Run({"remove", "my.index", "old/a"}, Refuse(SYS_fsetxattr, EOPNOTSUPP)).status, 0);
  EXPECT_EQ(AttributeOf("my.index", kAccessList), "");
  EXPECT_EQ(ModeOf("my.index"), 0600u);
}

TEST_F(FileAttributesTest, ListOfTheFolderGivesNobodyMore) {
  const std::string list = AccessList(7, kBob, 6, 6, 6, 0);
  if (setxattr(Path("").c_str(), kListForNewFiles, list.data(), list.size(), 0) != 0) {
    GTEST_SKIP() << "no access control lists here";
  }
  for (const auto& [command, made] : Makers()) {
    Reset();
    removexattr(Path("my.index").c_str(), kAccessList);
    ASSERT_EQ(chmod(Path("my.index").c_str(), 0640), 0);
    ASSERT_EQ(Run(command).status, 0);
    EXPECT_EQ(AttributeOf(made, kAccessList), "") << command.front();
    EXPECT_EQ(ModeOf(made), 0640u) << command.front();
  }
}

// ---- When the system refuses ----

TEST_F(FileAttributesTest, RefusedCallsLeaveTheIndexAsItWasAndNothingBeside) {
  SetAttribute("user.origin", "here");
  const std::string before = IndexBytes();
  for (const auto& [call, error] : std::vector<std::pair<long, int>>{
           {SYS_fchmod, EIO}, {SYS_fsync, EIO}, {SYS_renameat, EIO}, {SYS_mkdirat, ENOSPC}}) {
    const Outcome outcome = Run({"remove", "my.index", "old/a"}, Refuse(call, error));
    EXPECT_EQ(outcome.status, 2) << outcome;
    EXPECT_EQ(outcome.err.rfind("kestan: cannot ", 0), 0u) << outcome;
    EXPECT_EQ(IndexBytes(), before) << call;
    EXPECT_TRUE(Leftovers().empty()) << call;
  }
}

TEST_F(FileAttributesTest, AttributeWithoutRoomLeavesTheIndexAsItWas) {
  if (!SetAttribute("user.origin", "here")) GTEST_SKIP() << "no extended attributes here";
  const std::string before = IndexBytes();
  EXPECT_EQ(Run({"remove", "my.index", "old/a"}, Refuse(SYS_fsetxattr, ENOSPC)),
            Failure("cannot change index 'my.index': no space left on device; it is as it was"));
  EXPECT_EQ(IndexBytes(), before);
  EXPECT_TRUE(Leftovers().empty());
}

TEST_F(FileAttributesTest, AttributesThatTheSystemRefusesAreLeftOut) {
  SetAttribute("user.origin", "here");
  EXPECT_EQ(Run({"remove", "my.index", "old/a"}, Refuse(SYS_fsetxattr, EPERM)).status, 0);
  EXPECT_EQ(Run({"list", "my.index"}), Success("old/b\n"));
}

TEST_F(FileAttributesTest, NewFilesGetTheirNamesWhereRenamingAlwaysReplaces) {
  const auto refuse = Refuse(SYS_renameat2, EINVAL);
  EXPECT_EQ(Run({"index", "my.index.n", "new"}, refuse).status, 0);
  EXPECT_EQ(Run({"copy", "my.index", "my.index.copy"}, refuse).status, 0);
  EXPECT_EQ(Leftovers().size(), 2u);
  EXPECT_EQ(StatusOf("my.index.n").st_nlink, 1u);
  EXPECT_EQ(Run({"copy", "my.index", "my.index.b"}, Refuse(SYS_renameat2, EIO)).status, 2);
  EXPECT_EQ(Leftovers().size(), 2u);
}

// ---- Other users ----

class OtherUsersTest : public FileAttributesTest {
 protected:
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "only a superuser can become several users";
    FileAttributesTest::SetUp();
    ASSERT_EQ(chown(Path("").c_str(), kAlice, kProject), 0);
    OpenFolderToAll(0770);
  }
};

TEST_F(OtherUsersTest, ChangeByAnotherMemberKeepsGroupAndMode) {
  for (const Arguments& change : Changes()) {
    Give(kAlice, kProject, 0660);
    ASSERT_EQ(Run(change, As(kBob, true)).status, 0) << change.front();
    EXPECT_EQ(StatusOf("my.index").st_uid, kBob);
    EXPECT_EQ(StatusOf("my.index").st_gid, kProject);
    EXPECT_EQ(ModeOf("my.index"), 0660u);
    EXPECT_EQ(Run({"title", "set", "my.index", "old/b", "Mine"}, As(kAlice, true)).status, 0);
  }
}

TEST_F(OtherUsersTest, ChangeByTheSuperuserKeepsOwnerGroupAndMode) {
  for (const Arguments& change : Changes()) {
    Give(kAlice, kProject, 0640);
    ASSERT_EQ(Run(change).status, 0) << change.front();
    EXPECT_EQ(StatusOf("my.index").st_uid, kAlice);
    EXPECT_EQ(StatusOf("my.index").st_gid, kProject);
    EXPECT_EQ(ModeOf("my.index"), 0640u);
  }
}

TEST_F(OtherUsersTest, GroupThatCannotBeKeptGivesNobodyMore) {
  OpenFolderToAll(0777);
  const std::vector<std::pair<mode_t, mode_t>> modes{
      {0666, 0666}, {0606, 0600}, {0626, 0622}, {0676, 0666}};
  for (const auto& [before, after] : modes) {
    Give(kAlice, kProject, before);
    ASSERT_EQ(Run({"remove", "my.index", "old/a"}, As(kBob, false)).status, 0);
    EXPECT_EQ(StatusOf("my.index").st_gid, kBob);
    EXPECT_EQ(ModeOf("my.index"), after);
  }
}

TEST_F(OtherUsersTest, CopyGivesNobodyMore) {
  OpenFolderToAll(0777);
  for (const char* command : {"copy", "repair"}) {
    Give(kAlice, kProject, 0640);
    ASSERT_EQ(Run({command, "my.index", "my.index.n"}, As(kBob, true)).status, 0);
    EXPECT_EQ(StatusOf("my.index.n").st_gid, kProject);
    EXPECT_EQ(ModeOf("my.index.n"), 0640u);
    Give(kAlice, kBob, 0640);
    ASSERT_EQ(Run({command, "my.index", "my.index.n"}, As(kBob, true)).status, 0);
    EXPECT_EQ(ModeOf("my.index.n"), 0640u);
    Give(kAlice, kProject, 0604);
    ASSERT_EQ(Run({command, "my.index", "my.index.n"}, As(kBob, false)).status, 0);
    EXPECT_EQ(ModeOf("my.index.n"), 0600u);
  }
}

TEST_F(OtherUsersTest, ShrinkInPlaceIsForTheOwner) {
  Give(kAlice, kProject, 0660);
  const std::string before = IndexBytes();
  const Outcome outcome = Run({"shrink", "my.index", "--in-place"}, As(kBob, true));
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(outcome.err.find("kestan: cannot shrink index 'my.index' in place: it belongs to "
                             "another user; it works without --in-place\n"),
            std::string::npos)
      << outcome;
  EXPECT_EQ(IndexBytes(), before);
  EXPECT_TRUE(Leftovers().empty());
  EXPECT_EQ(Run({"shrink", "my.index", "--in-place"}, As(kAlice, true)).status, 0);
}

TEST_F(OtherUsersTest, ListWithoutItsGroupIsNotKept) {
  OpenFolderToAll(0777);
  Give(kAlice, kProject, 0600);
  if (!SetAttribute(kAccessList, AccessList(6, kBob, 6, 0, 6, 4))) {
    GTEST_SKIP() << "no access control lists here";
  }
  ASSERT_EQ(Run({"remove", "my.index", "old/a"}, As(kBob, false)).status, 0);
  EXPECT_EQ(AttributeOf("my.index", kAccessList), "");
  EXPECT_EQ(ModeOf("my.index"), 0600u);
}

TEST_F(OtherUsersTest, WhatTheSuperuserDoesBarsNobody) {
  OpenFolderToAll(0777);
  Give(kAlice, kAlice, 0600);
  ASSERT_EQ(Run({"index", "my.index", "missing"}).status, 2);
  ASSERT_EQ(Run({"title", "set", "my.index", "old/a", "Root's"}).status, 0);
  EXPECT_EQ(Run({"remove", "my.index", "old/a"}, As(kAlice, false)).status, 0);
}

TEST_F(OtherUsersTest, LinksOfOthersLeadTheSuperuserNowhere) {
  OpenFolderToAll(0777);
  Write("precious", "mine");
  for (const char* end : {".lock", ".kestan-new"}) {
    std::filesystem::create_symlink("precious", Path(std::string("my.index") + end));
    std::filesystem::create_symlink("nowhere", Path(std::string("made") + end));
  }
  ASSERT_EQ(Run({"shrink", "my.index"}).status, 0);
  ASSERT_EQ(Run({"index", "made", "new"}).status, 0);
  EXPECT_EQ(BytesOfFile(Path("precious")), "mine");
  EXPECT_FALSE(std::filesystem::exists(Path("nowhere")));
}

}  // namespace
}  // namespace kestan_tests
