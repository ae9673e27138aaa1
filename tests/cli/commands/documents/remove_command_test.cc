// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/cli/index_folder_test.h"

namespace kestan_tests {
namespace {

using Names = std::vector<std::string>;

class RemoveCommandTest : public IndexFolderTest {
 protected:
  void SetUp() override {
    AddDocument("a");
    AddDocument("b");
  }
};

TEST_F(RemoveCommandTest, ReportsHowManyWereRemoved) {
  EXPECT_EQ(Run({"remove", "my.index", "a"}), Success("removed 1 document\n"));
  EXPECT_EQ(StoredNames(), Names{"b"});
  EXPECT_EQ(*Read().Count("cat"), 1u);
}

TEST_F(RemoveCommandTest, ReportIsJsonOrLeftOut) {
  EXPECT_EQ(Run({"remove", "--json", "my.index", "a"}), Success("{\"schema\":1,\"removed\":1}\n"));
  EXPECT_EQ(Run({"remove", "-q", "my.index", "b"}), Success(""));
  EXPECT_EQ(StoredNames(), Names{});
}

TEST_F(RemoveCommandTest, NameGivenTwiceCountsOnce) {
  AddDocument(std::filesystem::canonical(Path("")).string() + "/file");
  EXPECT_EQ(Run({"remove", "my.index", "file", "a", "./file", "a"}),
            Success("removed 2 documents\n"));
  EXPECT_EQ(StoredNames(), Names{"b"});
}

TEST_F(RemoveCommandTest, PathsOfFilesThatAreGoneAreNamesToo) {
  AddDocument("/gone/before/file");
  AddDocument(std::filesystem::canonical(Path("")).string() + "/folder/file");
  EXPECT_EQ(Run({"remove", "my.index", "/gone//before/x/../file", "folder/file"}),
            Success("removed 2 documents\n"));
  EXPECT_EQ(StoredNames(), (Names{"a", "b"}));
}

TEST_F(RemoveCommandTest, SideRecordsAreRemovedToo) {
  ASSERT_EQ(Run({"remove", "my.index", "a"}).status, 0);
  EXPECT_EQ(Read().FindDocument("a").status().code(), kestan::search::StatusCode::kNotFound);
  EXPECT_EQ(Find("b").title, "The title");
  EXPECT_EQ(Find("b").summary, "the summary");
  EXPECT_EQ(Find("b").host_data, "the record");
}

TEST_F(RemoveCommandTest, UnknownNameIsFoundBeforeAnythingIsRemoved) {
  const auto before = FolderBytes();
  EXPECT_EQ(Run({"remove", "my.index", "a", "c"}),
            Failure("no document 'c' in index 'my.index'; see kestan list"));
  EXPECT_EQ(Run({"remove", "my.index", "a", "b\nc"}),
            Failure("no document 'b\\nc' in index 'my.index'; see kestan list"));
  EXPECT_EQ(Run({"remove", "my.index", "a", ""}),
            Failure("no document '' in index 'my.index'; see kestan list"));
  EXPECT_EQ(FolderBytes(), before);
}

TEST_F(RemoveCommandTest, RemovedDocumentCannotBeRemovedAgain) {
  ASSERT_EQ(Run({"remove", "my.index", "a"}).status, 0);
  EXPECT_EQ(Run({"remove", "my.index", "a"}),
            Failure("no document 'a' in index 'my.index'; see kestan list"));
}

TEST_F(RemoveCommandTest, IndexOfOneFileIsLeftAlone) {
  MakeOneFileIndex();
  const std::string before = BytesOfFile(Path("one.index"));
  EXPECT_EQ(Run({"remove", "one.index", "a"}), OneFileIsReadOnly());
  EXPECT_EQ(BytesOfFile(Path("one.index")), before);
}

TEST_F(RemoveCommandTest, MissingIndexIsNotMade) {
  EXPECT_EQ(
      Run({"remove", "no.index", "a"}),
      Failure("cannot open index 'no.index': no such file or folder; kestan index makes one"));
  EXPECT_EQ(CountFiles("no.index"), 0);
}

}  // namespace
}  // namespace kestan_tests
