#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class ReportCommandsTest : public CommandTest {
 protected:
  // What `kestan stats` says of `what`.
  std::string Fact(const std::string& what) {
    const std::string out = "\n" + Run({"stats", "my.index"}).out;
    const std::size_t at = out.find("\n" + what + ": ");
    if (at == std::string::npos) return "nothing";
    const std::size_t begin = at + what.size() + 3;
    return out.substr(begin, out.find('\n', begin) - begin);
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
  EXPECT_EQ(Fact("documents"), "2");
  EXPECT_EQ(Fact("words"), "5");  // I is kept as i too
}

TEST_F(ReportCommandsTest, StatsOfNoDocumentsAreZero) {
  { Kestan().OpenIndex(Path("my.index").c_str(), 1); }
  EXPECT_EQ(Fact("documents"), "0");
  EXPECT_EQ(Fact("words"), "0");
}

TEST_F(ReportCommandsTest, WordsOfRemovedDocumentsGoWhenShrunk) {
  Add("a", "cat dog\n");
  Add("b", "dog\n");
  ASSERT_EQ(Run({"remove", "my.index", "a"}).status, 0);
  EXPECT_EQ(Fact("documents"), "1");
  EXPECT_EQ(Fact("words"), "2");
  ASSERT_EQ(Run({"shrink", "my.index"}).status, 0);
  EXPECT_EQ(Fact("documents"), "1");
  EXPECT_EQ(Fact("words"), "1");
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

TEST_F(ReportCommandsTest, StatsTellWhatTakesTheRoom) {
  Add("a", "cat dog\nmore of it\n");
  EXPECT_EQ(Fact("file"), std::to_string(std::filesystem::file_size(Path("my.index"))) + " bytes");
  EXPECT_EQ(Fact("titles"), "10 bytes");       // t-a, cat dog
  EXPECT_EQ(Fact("name records"), "5 bytes");  // c- and a code, a
  EXPECT_EQ(Fact("words in 1 document"), "5");
}

TEST_F(ReportCommandsTest, StatsAsJsonHaveTheSameNumbers) {
  Add("a", "cat dog\n");
  const std::string out = Run({"stats", "my.index", "--json"}).out;
  EXPECT_EQ(out.substr(0, 35), "{\"schema\":1,\"documents\":1,\"words\":2");
  EXPECT_NE(out.find("\"frequencies\":[{\"documents_from\":1,\"documents_to\":1,\"words\":2,"
                     "\"postings\":2}]"),
            std::string::npos)
      << out;
}

TEST_F(ReportCommandsTest, ListEndsNamesWithNulsWhereAsked) {
  Add("a", "cat\n");
  Add("b", "cat\n");
  EXPECT_EQ(Run({"list", "-0", "my.index"}), Success(std::string("a\0b\0", 4)));
}

TEST_F(ReportCommandsTest, ListAsJsonHasTitles) {
  Add("a", "A title\nand more\n");
  const std::string out = Run({"list", "--json", "my.index"}).out;
  EXPECT_EQ(out.substr(0, 45), "{\"schema\":1,\"documents\":[{\"name\":\"a\",\"time\":1");
  EXPECT_NE(out.find("\"title\":\"A title\",\"summary\":\"and more\""), std::string::npos) << out;
}

TEST_F(ReportCommandsTest, NamesThatAreNotUtf8StayJson) {
  Add("caf\xe9", "cat\n");
  EXPECT_NE(Run({"list", "--json", "my.index"}).out.find("caf\xef\xbf\xbd"), std::string::npos);
}

TEST_F(ReportCommandsTest, WordsAreInOrderOfBytes) {
  Add("a", "dog cat dog\n");
  EXPECT_EQ(Run({"words", "my.index"}), Success("cat\ndog\n"));
}

TEST_F(ReportCommandsTest, WordsAreBoundByCountOrShare) {
  Add("a", "cat dog\n");
  Add("b", "dog bird\n");
  EXPECT_EQ(Run({"words", "my.index", "--at-least", "2"}), Success("dog\n"));
  EXPECT_EQ(Run({"words", "my.index", "--at-most", "1"}), Success("bird\ncat\n"));
  EXPECT_EQ(Run({"words", "my.index", "--at-most", "0.5"}), Success("bird\ncat\n"));
  EXPECT_EQ(Run({"words", "my.index", "--counts"}), Success("2 dog\n1 bird\n1 cat\n"));
}

TEST_F(ReportCommandsTest, BoundsThatAreNoNumbersAreRefused) {
  Add("a", "cat\n");
  for (const char* bound : {"many", "-1", "65536", "1x", ""}) {
    EXPECT_EQ(Run({"words", "my.index", std::string("--at-least=") + bound}).status, 2) << bound;
  }
}

TEST_F(ReportCommandsTest, ReportsLeaveTheIndexAsItWas) {
  Add("a", "cat\n");
  const std::string before = IndexBytes();
  Run({"list", "my.index"});
  Run({"stats", "my.index"});
  Run({"words", "my.index", "--counts"});
  EXPECT_EQ(IndexBytes(), before);
}

}  // namespace
}  // namespace kestan_tests
