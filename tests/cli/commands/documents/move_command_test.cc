// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/index_folder_test.h"

namespace kestan_tests {
namespace {

using Names = std::vector<std::string>;

class MoveCommandTest : public IndexFolderTest {
 protected:
  void SetUp() override {
    AddDocument("a", "cat", "Title of a");
    AddDocument("b", "cat", "Title of b");
  }

  // The folder of the test, where the command runs.
  std::string Here() const { return std::filesystem::canonical(Path("")).string(); }
};

TEST_F(MoveCommandTest, SideRecordsAreMovedToo) {
  EXPECT_EQ(Run({"move", "my.index", "a", "z"}), Success(""));
  EXPECT_EQ(StoredNames(), (Names{"z", "b"}));
  EXPECT_EQ(Find("z").title, "Title of a");
  EXPECT_EQ(Find("z").summary, "the summary");
  EXPECT_EQ(Find("z").host_data, "the record");
  EXPECT_EQ(*Read().Count("cat"), 2u);
}

TEST_F(MoveCommandTest, NameOfAnotherDocumentNeedsReplace) {
  EXPECT_EQ(Run({"move", "my.index", "a", "b"}),
            Failure("index 'my.index' has a document 'b' already; --replace removes it first"));
  EXPECT_EQ(StoredNames(), (Names{"a", "b"}));
  EXPECT_EQ(Run({"move", "my.index", "a", "b", "--replace"}), Success(""));
  EXPECT_EQ(StoredNames(), Names{"b"});
  EXPECT_EQ(Find("b").title, "Title of a");
}

TEST_F(MoveCommandTest, ReplaceNeedsNothingToReplace) {
  EXPECT_EQ(Run({"move", "my.index", "a", "z", "--replace"}), Success(""));
  EXPECT_EQ(StoredNames(), (Names{"z", "b"}));
}

TEST_F(MoveCommandTest, MoveToItsOwnNameChangesNothing) {
  const auto before = FolderBytes();
  EXPECT_EQ(Run({"move", "my.index", "a", "a"}), Success(""));
  EXPECT_EQ(Run({"move", "my.index", "a", "a", "--replace"}), Success(""));
  EXPECT_EQ(FolderBytes(), before);
}

TEST_F(MoveCommandTest, DocumentOfAFileGetsAPath) {
  AddDocument(Here() + "/notes.txt");
  std::filesystem::create_directory(Path("archive"));
  EXPECT_EQ(Run({"move", "my.index", "notes.txt", "archive/../archive//notes.txt"}), Success(""));
  EXPECT_EQ(StoredNames(), (Names{"a", "b", Here() + "/archive/notes.txt"}));
  EXPECT_EQ(Run({"move", "my.index", "archive/notes.txt", "./archive/notes.txt"}), Success(""));
  EXPECT_EQ(Run({"move", "my.index", Here() + "/archive/notes.txt", "/else/where"}), Success(""));
  EXPECT_EQ(StoredNames(), (Names{"a", "b", "/else/where"}));
}

TEST_F(MoveCommandTest, NameThatIsNoPathIsTakenAsItStands) {
  EXPECT_EQ(Run({"move", "my.index", "a", "./x/../y"}), Success(""));
  EXPECT_EQ(StoredNames(), (Names{"./x/../y", "b"}));
}

TEST_F(MoveCommandTest, UnknownDocumentIsAnError) {
  EXPECT_EQ(Run({"move", "my.index", "x", "y"}),
            Failure("no document 'x' in index 'my.index'; see kestan list"));
}

TEST_F(MoveCommandTest, EmptyNameIsAnError) {
  EXPECT_EQ(Run({"move", "my.index", "a", ""}), Failure("the new name is empty"));
}

TEST_F(MoveCommandTest, NameOfTwoLinesIsAnError) {
  EXPECT_EQ(Run({"move", "my.index", "a", "b\nc"}),
            Failure("the name 'b\\nc' holds a line feed, and documents are listed one a line"));
}

TEST_F(MoveCommandTest, NameThatIsTooLongIsAnError) {
  EXPECT_EQ(Run({"move", "my.index", "a", std::string(4097, 'x')}),
            Failure("index 'my.index': the name of a document is too long"));
  EXPECT_EQ(Run({"move", "my.index", "a", "b", "--replace"}), Success(""));
}

TEST_F(MoveCommandTest, IndexOfOneFileIsLeftAlone) {
  MakeOneFileIndex();
  EXPECT_EQ(Run({"move", "one.index", "a", "b"}), OneFileIsReadOnly());
}

}  // namespace
}  // namespace kestan_tests
