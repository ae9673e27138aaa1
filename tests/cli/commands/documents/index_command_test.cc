#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

using IndexCommandTest = CommandTest;

TEST_F(IndexCommandTest, ReportsWhatWasDone) {
  Write("d/a", "cat dog\n");
  Write("d/b", "dog bird\n");
  Write("d/c", std::string(1, '\0'));
  std::filesystem::create_symlink("a", Path("d/l"));
  std::filesystem::create_symlink("b", Path("d/m"));
  EXPECT_EQ(Run({"index", "my.index", "d"}),
            Success("added 2, updated 0, moved 0, removed 0, unchanged 0, skipped 3 "
                    "(1 binary file, 2 links)\n"));
}

TEST_F(IndexCommandTest, StoresTitleAndSummary) {
  Add("d/a", "\n  The   cat\nsat on\n the mat.\n");
  const Records records = Dump(Path("my.index"));
  EXPECT_EQ(records.at("t-d/a"), "The cat");
  EXPECT_EQ(records.at("s-d/a"), "sat on the mat.");
}

TEST_F(IndexCommandTest, StoresPostingsOfCleanedWords) {
  Add("a", "Don't e-mail 42 times.\n");
  const Records records = Dump(Path("my.index"));
  EXPECT_EQ(records.at("Dont"), Units({1, 1, 1}));
  EXPECT_EQ(records.at("dont"), Units({1, 1, 1}));
  EXPECT_EQ(records.at("e"), Units({1, 1, 2}));
  EXPECT_EQ(records.at("mail"), Units({1, 1, 3}));
  EXPECT_EQ(records.at("times"), Units({1, 1, 4}));
}

TEST_F(IndexCommandTest, TextCannotTouchSystemRecords) {
  Add("a", "g-code g-opts d-a c-\x01 t-a g-avail\n");
  const Records records = Dump(Path("my.index"));
  EXPECT_EQ(records.at("g-code"), Units({1}));
  EXPECT_EQ(records.at("g-opts"), Units({0, 0}));
  EXPECT_EQ(records.count("g-avail"), 0u);
  EXPECT_EQ(records.at("g"), Units({1, 3, 1, 3, 10}));
}

TEST_F(IndexCommandTest, UnchangedFilesAreLeftAsTheyAre) {
  Write("d/a", "cat\n");
  Write("d/b", "dog\n");
  ASSERT_EQ(Run({"index", "my.index", "d"}).status, 0);
  EXPECT_EQ(Run({"index", "my.index", "d"}),
            Success("added 0, updated 0, moved 0, removed 0, unchanged 2, skipped 0\n"));
  EXPECT_EQ(Run({"list", "my.index"}), Success("d/a\nd/b\n"));
  EXPECT_EQ(Run({"search", "my.index", "cat"}), Success("100 d/a\n"));
}

TEST_F(IndexCommandTest, NewVersionReplacesTheOld) {
  Add("a", "Old title\nold summary\ncat\n");
  Add("a", "New\ndog\n");
  EXPECT_EQ(Run({"search", "my.index", "cat"}).status, 1);
  EXPECT_EQ(Run({"search", "my.index", "dog"}), Success("100 a\n"));
  EXPECT_EQ(Dump(Path("my.index")).at("t-a"), "New");
  EXPECT_EQ(Dump(Path("my.index")).at("s-a"), "dog");
}

TEST_F(IndexCommandTest, EmptiedFileLosesItsTitle) {
  Add("a", "Title\nsummary\n");
  Add("a", "");
  EXPECT_EQ(Dump(Path("my.index")).at("t-a"), "");
  EXPECT_EQ(Dump(Path("my.index")).at("s-a"), "");
  EXPECT_EQ(Run({"list", "my.index"}), Success("a\n"));
}

TEST_F(IndexCommandTest, DoesNotIndexTheIndex) {
  Write("a", "cat\n");
  ASSERT_EQ(Run({"index", "my.index", "."}).status, 0);
  EXPECT_EQ(Run({"index", "my.index", "."}),
            Success("added 0, updated 0, moved 0, removed 0, unchanged 1, skipped 0\n"));
  EXPECT_EQ(Run({"list", "my.index"}), Success("a\n"));
}

TEST_F(IndexCommandTest, BracketsInNamesAreNoPatterns) {
  Write("a", "cat\n");
  Write("b", "cat\n");
  Write("[a,b]", "dog\n");
  ASSERT_EQ(Run({"index", "my.index", "[a,b]"}).status, 0);
  EXPECT_EQ(Run({"list", "my.index"}), Success("[a,b]\n"));
}

// ---- Bad input: the index stays as it was, or is not made at all ----

class BadInputTest : public CommandTest {
 protected:
  void SetUp() override { Add("good", "cat\n"); }

  // Runs `kestan index` on `paths`, with a new index and with one that is there.
  void ExpectRefusal(
      std::vector<std::string> paths, const std::string& what, const InChild& prepare = [] {}) {
    const std::string before = IndexBytes();
    paths.insert(paths.begin(), {"index", "my.index"});
    EXPECT_EQ(Run(paths, prepare), Failure(what));
    EXPECT_EQ(IndexBytes(), before);
    paths[1] = "new.index";
    EXPECT_EQ(Run(paths, prepare), Failure(what));
    EXPECT_FALSE(std::filesystem::exists(Path("new.index")));
  }
};

TEST_F(BadInputTest, MissingFile) {
  ExpectRefusal({"good", "bad"}, "cannot read 'bad': no such file or folder");
}

// One bad file among thousands is no reason to index none.
class BadFileTest : public CommandTest {
 protected:
  // Runs `kestan index` on the folder `d`, where one file is good, with a new index.
  void ExpectSkip(
      const std::string& what, const std::string& reason, const std::string& skipped,
      const InChild& prepare = [] {}) {
    Write("d/good", "cat\n");
    OpenFolderToAll(0777);
    EXPECT_EQ(
        Run({"index", "my.index", "d"}, prepare),
        (Outcome{
            1, "added 1, updated 0, moved 0, removed 0, unchanged 0, skipped 1 (" + skipped + ")\n",
            "kestan: skipped '" + what + "': " + reason + "\n"}));
    EXPECT_EQ(Run({"list", "my.index"}), Success("d/good\n"));
  }
};

TEST_F(BadFileTest, UnreadableFile) {
  Write("d/bad", "dog\n");
  ASSERT_EQ(chmod(Path("d/bad").c_str(), 0), 0);
  ExpectSkip("d/bad", "permission denied", "1 unreadable", GiveUpPrivileges);
}

TEST_F(BadFileTest, UnreadableDirectory) {
  Write("d/bad/a", "dog\n");
  ASSERT_EQ(chmod(Path("d/bad").c_str(), 0), 0);
  ExpectSkip("d/bad", "permission denied", "1 unreadable", GiveUpPrivileges);
  ASSERT_EQ(chmod(Path("d/bad").c_str(), 0755), 0);
}

TEST_F(BadFileTest, NameWithALineFeed) {
  Write("d/two\nlines", "dog\n");
  ExpectSkip("d/two\\nlines", "its name holds a line feed", "1 unusable name");
}

TEST_F(BadInputTest, EmptyDirectory) {
  std::filesystem::create_directory(Path("d"));
  ExpectRefusal({"d"}, "nothing to index: no text files, 0 binary files, 0 links");
}

TEST_F(BadInputTest, DirectoryWithoutTextFiles) {
  Write("d/a", std::string(3, '\0'));
  std::filesystem::create_symlink("../good", Path("d/l"));
  ExpectRefusal({"d"}, "nothing to index: no text files, 1 binary file, 1 link");
}

TEST_F(BadInputTest, IndexAsTheOnlyInput) {
  const std::string before = IndexBytes();
  EXPECT_EQ(Run({"index", "my.index", "my.index"}),
            Failure("nothing to index: no text files, 0 binary files, 0 links"));
  EXPECT_EQ(IndexBytes(), before);
}

TEST_F(BadInputTest, MoreDocumentsThanFreeCodes) {
  Write("d/a", "dog\n");
  Write("d/b", "dog\n");
  Plant(Path("my.index"), {{"g-code", Units({65534})}});
  const std::string before = IndexBytes();
  EXPECT_EQ(Run({"index", "my.index", "d"}),
            Failure("index 'my.index' has room for 1 more document, not for 2; shrinking it may "
                    "make room"));
  EXPECT_EQ(IndexBytes(), before);
  EXPECT_EQ(Run({"index", "my.index", "d/a"}).status, 0);
  EXPECT_EQ(Run({"search", "my.index", "dog"}), Success("100 d/a\n"));
}

}  // namespace
}  // namespace kestan_tests
