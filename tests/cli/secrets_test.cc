// SPDX-License-Identifier: GPL-3.0-or-later
// What the command writes and prints does not depend on the secret of its hash tables.
#include <gtest/gtest.h>

#include <string>

#include "tests/cli/command_test.h"
#include "tests/cli/index_folder.h"

namespace kestan_tests {
namespace {

// Each command is a process with a secret of its own.
class SecretsTest : public CommandTest {};

TEST_F(SecretsTest, NoByteOfAnIndexFollowsFromTheSecret) {
  std::string text;
  for (char first = 'a'; first <= 'z'; ++first) {
    for (char second = 'a'; second <= 'z'; ++second) text += {first, second, 'x', ' '};
  }
  for (const char* name : {"d/one", "d/two", "d/three"}) Write(name, text + name);
  bool is_same = false;
  // Some more trials, for documents hold the second in which they were added.
  for (int trial = 0; trial < 5 && !is_same; ++trial) {
    for (const char* name : {"a", "b"}) {
      std::filesystem::remove_all(Path(name));
      ASSERT_EQ(Run({"index", name, "d"}).status, 0);
    }
    is_same = FilesOfIndex(Path("a")) == FilesOfIndex(Path("b"));
  }
  EXPECT_TRUE(is_same);
}

TEST_F(SecretsTest, NoAnswerFollowsFromTheSecret) {
  for (int i = 0; i < 30; ++i) Write("d/" + std::to_string(i), "flow of air caf\xc3\xa9");
  ASSERT_EQ(Run({"index", "my.index", "d"}).status, 0);
  const auto search = [this] { return Run({"search", "--any", "my.index", "flow cafe air"}).out; };
  const std::string first = search();
  EXPECT_NE(first, "");
  for (int i = 0; i < 5; ++i) EXPECT_EQ(search(), first);
}

}  // namespace
}  // namespace kestan_tests
