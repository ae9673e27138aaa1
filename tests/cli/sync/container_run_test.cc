// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/container_run.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/cli/sync/run_index_test.h"

namespace kestan_cli {
namespace {

class ContainerRunTest : public RunIndexTest {
 protected:
  static std::string Message(const std::string& subject) {
    return "From a@b Fri Nov 20 10:11:12 2026\nFrom: Ann <ann@example.org>\nSubject: " + subject +
           "\n\nbody of " + subject + "\n\n";
  }
};

TEST_F(ContainerRunTest, EachMessageIsADocument) {
  Write("d/box", Message("one") + Message("two"));
  EXPECT_EQ(Index(), Report(2, 0, 0, 0, 0));
  EXPECT_EQ(List(), "d/box#1\nd/box#2\n");
  EXPECT_EQ(Info("d/box#2").title, "two");
  EXPECT_NE(Info("d/box#2").host_data.find(" from=\"Ann <ann@example.org>\""), std::string::npos);
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 2));
}

TEST_F(ContainerRunTest, OnlyNewMessagesAreAdded) {
  Write("d/box", Message("one"));
  Index();
  Write("d/box", Message("one") + Message("two"));
  EXPECT_EQ(Index(), Report(1, 0, 0, 0, 1));
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 2));
}

TEST_F(ContainerRunTest, UnchangedMailboxIsNotOpened) {
  Write("d/box", Message("one") + Message("two"));
  Index();
  std::filesystem::permissions("d/box", std::filesystem::perms::none);
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 2));
}

TEST_F(ContainerRunTest, MessageThatIsDeletedIsRemoved) {
  Write("d/box", Message("one") + Message("two") + Message("three"));
  Index();
  AddToRecord("d/box#3", "\nmine");
  Write("d/box", Message("one") + Message("three"));
  EXPECT_EQ(Index(), Report(0, 1, 0, 1, 1));
  EXPECT_EQ(List(), "d/box#1\nd/box#2\n");
  EXPECT_EQ(Info("d/box#2").title, "three");
  EXPECT_NE(Info("d/box#2").host_data.find("\nmine"), std::string::npos);
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 2));
}

TEST_F(ContainerRunTest, OlderMailboxThatIsPutBackIsReadAgain) {
  namespace fs = std::filesystem;
  Write("d/box", Message("one"));
  Write("keep", Message("one"));
  fs::last_write_time("keep", fs::last_write_time("d/box"));
  Index();
  Write("d/box", Message("one") + Message("two"));
  Index();
  fs::rename("keep", "d/box");
  EXPECT_EQ(Index(), Report(0, 0, 0, 1, 1));
}

TEST_F(ContainerRunTest, RenamedMailboxIsMoved) {
  Write("d/box", Message("one") + Message("two"));
  Index();
  AddToRecord("d/box#2", "\nmine");
  std::filesystem::rename("d/box", "d/other");
  EXPECT_EQ(Index(), Report(0, 0, 2, 0, 0));
  EXPECT_EQ(List(), "d/other#1\nd/other#2\n");
  EXPECT_NE(Info("d/other#2").host_data.find("\nmine"), std::string::npos);
  EXPECT_NE(Info("d/other#2").host_data.find(" from=\"Ann"), std::string::npos);
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 2));
}

TEST_F(ContainerRunTest, MessagesOfAMailboxThatIsGoneStayUnlessPruned) {
  Write("d/box", Message("one"));
  Write("d/a", "text");
  Index();
  std::filesystem::remove("d/box");
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 1));
  EXPECT_EQ(List(), "d/a\nd/box#1\n");
  options_.prune = true;
  EXPECT_EQ(Index(), Report(0, 0, 0, 1, 1));
  EXPECT_EQ(List(), "d/a\n");
}

TEST_F(ContainerRunTest, MailboxMayBeARoot) {
  Write("d/box", Message("one") + Message("two"));
  options_.paths = {"d/box"};
  EXPECT_EQ(Index(), Report(2, 0, 0, 0, 0));
  Write("d/box", Message("one"));
  EXPECT_EQ(Index(), Report(0, 0, 0, 1, 1));
  options_.forget = true;
  options_.prune = true;
  options_.reset = false;
  EXPECT_EQ(Index(), Report(0, 0, 0, 1, 0));
}

TEST_F(ContainerRunTest, TextMayBecomeAMailboxAndBack) {
  Write("d/box", "text");
  Index();
  Write("d/box", Message("one"));
  EXPECT_EQ(Index(), Report(1, 0, 0, 1, 0));
  EXPECT_EQ(List(), "d/box#1\n");
  Write("d/box", "text again");
  EXPECT_EQ(Index(), Report(1, 0, 0, 1, 0));
  EXPECT_EQ(List(), "d/box\n");
}

TEST_F(ContainerRunTest, MessageThatIsTooLargeIsNamedAndTriedAgain) {
  options_.max_file_bytes = 200;
  Write("d/box", Message("one") + Message(std::string(100, 'x')) + Message("three"));
  const std::string skip = "kestan: skipped 'd/box#2': a message that is too large\n";
  EXPECT_EQ(Index(), Report(2, 0, 0, 0, 0, "1 (1 too large)") + skip);
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 2, "1 (1 too large)") + skip);
  EXPECT_EQ(List(), "d/box#1\nd/box#3\n");
}

TEST_F(ContainerRunTest, AllReadsEveryMessageAgainAndKeepsTheUsersLines) {
  Write("d/box", Message("one") + Message("two"));
  Index();
  AddToRecord("d/box#1", "\nmine");
  options_.all = true;
  EXPECT_EQ(Index(), Report(0, 2, 0, 0, 0));
  EXPECT_NE(Info("d/box#1").host_data.find("\nmine"), std::string::npos);
}

TEST_F(ContainerRunTest, SnippetsAreReadFromTheMailbox) {
  Write("d/box", Message("one") + Message("two"));
  Index();
  const kestan_tests::Outcome outcome = Run({"search", "--snippets", "my.index", "two"});
  EXPECT_NE(outcome.out.find("body of [two]"), std::string::npos) << outcome;
  Write("d/box", Message("six") + Message("ten"));
  EXPECT_EQ(Run({"search", "--snippets", "my.index", "two"}).out.find("body"), std::string::npos);
}

}  // namespace
}  // namespace kestan_cli
