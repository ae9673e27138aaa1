// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/cli/index_folder_test.h"

namespace kestan_tests {
namespace {

class SetSideRecordCommandTest : public IndexFolderTest {
 protected:
  void SetUp() override { AddDocument("a"); }
};

TEST_F(SetSideRecordCommandTest, EachTextIsSetAndDeletedByItself) {
  for (const std::string kind : {"title", "summary", "user"}) {
    EXPECT_EQ(Run({kind, "set", "my.index", "a", "new " + kind}), Success(""));
  }
  EXPECT_EQ(Find("a").summary, "new summary");
  EXPECT_EQ(Run({"summary", "delete", "my.index", "a"}), Success(""));
  EXPECT_EQ(Find("a").summary, "");
  EXPECT_EQ(Find("a").title, "new title");
  EXPECT_EQ(Find("a").host_data, "new user");
  EXPECT_EQ(*Read().Count("cat"), 1u);
}

TEST_F(SetSideRecordCommandTest, EmptyTextDeletesIt) {
  EXPECT_EQ(Run({"title", "set", "my.index", "a", ""}), Success(""));
  EXPECT_EQ(Find("a").title, "");
}

TEST_F(SetSideRecordCommandTest, TextMayHaveLines) {
  EXPECT_EQ(Run({"user", "set", "my.index", "a", "one\n\n\xff two\n"}), Success(""));
  EXPECT_EQ(Find("a").host_data, "one\n\n\xff two\n");
}

TEST_F(SetSideRecordCommandTest, DocumentMayBeCalledByAPath) {
  const std::string name = std::filesystem::canonical(Path("")).string() + "/notes.txt";
  AddDocument(name);
  EXPECT_EQ(Run({"title", "set", "my.index", "./notes.txt", "Things"}), Success(""));
  EXPECT_EQ(Find(name).title, "Things");
  EXPECT_EQ(Run({"title", "delete", "my.index", "notes.txt"}), Success(""));
  EXPECT_EQ(Find(name).title, "");
}

TEST_F(SetSideRecordCommandTest, UnknownDocumentHasItsOwnMessage) {
  const Outcome unknown = Failure("no document 'b' in index 'my.index'; see kestan list");
  EXPECT_EQ(Run({"title", "set", "my.index", "b", "x"}), unknown);
  EXPECT_EQ(Run({"title", "delete", "my.index", "b"}), unknown);
}

TEST_F(SetSideRecordCommandTest, IndexOfOneFileIsLeftAlone) {
  MakeOneFileIndex();
  EXPECT_EQ(Run({"title", "set", "one.index", "a", "x"}), OneFileIsReadOnly());
  EXPECT_EQ(Run({"user", "delete", "one.index", "a"}), OneFileIsReadOnly());
}

}  // namespace
}  // namespace kestan_tests
