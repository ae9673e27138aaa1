#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class ReportCommandsTest : public CommandTest {
 protected:
  // What `kestan stats` says of an index with positions and no flags.
  std::string Facts(int documents, int words) {
    return "documents: " + std::to_string(documents) + "\nwords: " + std::to_string(words) +
           "\noption flags: 0\npositions kept: yes\nfile size: " +
           std::to_string(std::filesystem::file_size(Path("my.index"))) + " bytes\n";
  }
};

TEST_F(ReportCommandsTest, ListIsInOrderOfBytes) {
  for (const char* name : {"b", "a/z", "B", "a.txt"}) Add(name, "cat\n");
  EXPECT_EQ(Run({"list", "my.index"}), Success("B\na.txt\na/z\nb\n"));
}

TEST_F(ReportCommandsTest, ListOfNoDocumentsIsEmpty) {
  { Kestan().OpenIndex(Path("my.index").c_str(), 1); }
  EXPECT_EQ(Run({"list", "my.index"}), Success(""));
}

TEST_F(ReportCommandsTest, ListLeavesOutRemovedDocuments) {
  Add("a", "cat\n");
  Add("b", "cat\n");
  ASSERT_EQ(Run({"remove", "my.index", "a"}).status, 0);
  EXPECT_EQ(Run({"list", "my.index"}), Success("b\n"));
}

TEST_F(ReportCommandsTest, StatsCountDocumentsAndWords) {
  Add("a", "cat dog\n");
  Add("b", "dog I bird\n");
  EXPECT_EQ(Run({"stats", "my.index"}), Success(Facts(2, 5)));  // I is kept as i too
}

TEST_F(ReportCommandsTest, StatsOfNoDocumentsAreZero) {
  { Kestan().OpenIndex(Path("my.index").c_str(), 1); }
  EXPECT_EQ(Run({"stats", "my.index"}), Success(Facts(0, 0)));
}

TEST_F(ReportCommandsTest, WordsOfRemovedDocumentsGoWhenShrunk) {
  Add("a", "cat dog\n");
  Add("b", "dog\n");
  ASSERT_EQ(Run({"remove", "my.index", "a"}).status, 0);
  EXPECT_EQ(Run({"stats", "my.index"}), Success(Facts(1, 2)));
  ASSERT_EQ(Run({"shrink", "my.index"}).status, 0);
  EXPECT_EQ(Run({"stats", "my.index"}), Success(Facts(1, 1)));
}

TEST_F(ReportCommandsTest, StatsTellFlagsAndThatPositionsAreGone) {
  Add("a", "cat\n");
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    ASSERT_EQ(engine.SetOptionFlag(5), 0);
  }
  const std::string out = Run({"stats", "my.index"}).out;
  EXPECT_NE(out.find("\noption flags: 5\npositions kept: no\n"), std::string::npos) << out;
}

TEST_F(ReportCommandsTest, ReportsLeaveTheIndexAsItWas) {
  Add("a", "cat\n");
  const std::string before = IndexBytes();
  Run({"list", "my.index"});
  Run({"stats", "my.index"});
  EXPECT_EQ(IndexBytes(), before);
}

}  // namespace
}  // namespace kestan_tests
