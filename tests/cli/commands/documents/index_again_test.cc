// SPDX-License-Identifier: GPL-3.0-or-later
// Indexes whose words were made by an older version.
#include <gtest/gtest.h>
#include <kestan/checksum.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "tests/cli/command_test.h"
#include "tests/cli/index_folder.h"
#include "tests/support/files.h"

namespace kestan_tests {
namespace {

class IndexAgainTest : public CommandTest {
 protected:
  void SetUp() override {
    Write("d/a", "cat 2024\n");
    Write("d/b", "dog 2024\n");
    ASSERT_EQ(Run({"index", "my.index", "d", "-q"}).status, 0);
  }

  // Takes the version of the words out of the index.
  void MakeOlder() {
    const std::string path = Path("my.index/MANIFEST");
    std::string bytes = ReadFile(path);
    const std::string line = "property analyzer 1\n";
    ASSERT_NE(bytes.find(line), std::string::npos);
    bytes.erase(bytes.find(line), line.size());
    bytes.resize(bytes.rfind("checksum "));
    kestan::Crc64 checksum;
    checksum.Add(bytes);
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx",
                  static_cast<unsigned long long>(checksum.Value()));
    Write("my.index/MANIFEST", bytes + "checksum " + digits + "\n");
  }

  std::string Search(const std::string& query) {
    return AnswersOfIndex(Path("my.index"), query, Path(""));
  }
};

const char* const kAdvice =
    "cannot change index 'my.index': its words were made by an older version; kestan index "
    "'my.index' --again makes them again";

TEST_F(IndexAgainTest, NothingIsAddedToAnOlderIndex) {
  MakeOlder();
  Write("d/c", "cow\n");
  EXPECT_EQ(Run({"index", "my.index"}), Failure(kAdvice));
  EXPECT_EQ(Run({"index", "my.index", "d", "--stop-words", "english"}), Failure(kAdvice));
  EXPECT_EQ(Search("cat"), "100 d/a\n");
  EXPECT_EQ(Search("cow"), "");
}

TEST_F(IndexAgainTest, ARunWithoutNewFilesChangesNothing) {
  MakeOlder();
  EXPECT_EQ(Run({"index", "my.index", "-q"}).status, 0);
}

TEST_F(IndexAgainTest, AgainMakesAllWordsAnew) {
  MakeOlder();
  Write("d/c", "cow\n");
  std::filesystem::remove(Path("d/b"));
  EXPECT_EQ(Run({"index", "my.index", "--again"}),
            Success("added 1, updated 1, moved 0, removed 1, unchanged 0, skipped 0, 2 documents "
                    "in 1 segment\n"));
  EXPECT_EQ(Search("2024"), "100 d/a\n");
  EXPECT_EQ(Search("cow"), "100 d/c\n");
  EXPECT_EQ(Run({"index", "my.index", "-q"}).status, 0);
}

TEST_F(IndexAgainTest, AgainTakesNoPath) {
  EXPECT_EQ(Run({"index", "my.index", "d", "--again"}),
            Failure("--again is about all that the index remembers: no PATH"));
}

TEST_F(IndexAgainTest, NothingIsRemovedWhereARootIsGone) {
  std::filesystem::rename(Path("d"), Path("e"));
  const Outcome outcome = Run({"index", "my.index", "--again"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(outcome.err.find("--forget takes it from the roots"), std::string::npos);
  EXPECT_EQ(Search("cat"), "100 d/a\n");
}

TEST_F(IndexAgainTest, NothingIsRemovedWhereThereAreNoFiles) {
  std::filesystem::remove(Path("d/a"));
  std::filesystem::remove(Path("d/b"));
  EXPECT_EQ(Run({"index", "my.index", "--again"}),
            Failure("there are no files to make the index of"));
  EXPECT_EQ(Search("cat"), "100 d/a\n");
}

}  // namespace
}  // namespace kestan_tests
