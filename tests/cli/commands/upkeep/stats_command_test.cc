#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class StatsCommandTest : public CommandTest {
 protected:
  // Returns what `kestan stats` prints after "WHAT: ".
  std::string Fact(const std::string& what) {
    const std::string out = "\n" + Run({"stats", "my.index"}).out;
    const std::size_t at = out.find("\n" + what + ": ");
    if (at == std::string::npos) return "nothing";
    const std::size_t begin = at + what.size() + 3;
    return out.substr(begin, out.find('\n', begin) - begin);
  }
};

TEST_F(StatsCommandTest, CountsDocumentsAndWords) {
  Add("a", "cat dog\n");
  Add("b", "dog I bird\n");
  EXPECT_EQ(Fact("documents"), "2");
  EXPECT_EQ(Fact("words"), "5");  // I is kept as i too
}

TEST_F(StatsCommandTest, CountsOfAnEmptyIndexAreZero) {
  { Kestan().OpenIndex(Path("my.index").c_str(), 1); }
  EXPECT_EQ(Fact("documents"), "0");
  EXPECT_EQ(Fact("words"), "0");
}

TEST_F(StatsCommandTest, WordsOfRemovedDocumentsCountUntilTheShrink) {
  Add("a", "cat dog\n");
  Add("b", "dog\n");
  ASSERT_EQ(Run({"remove", "my.index", "a"}).status, 0);
  EXPECT_EQ(Fact("documents"), "1");
  EXPECT_EQ(Fact("words"), "2");
  ASSERT_EQ(Run({"shrink", "my.index"}).status, 0);
  EXPECT_EQ(Fact("documents"), "1");
  EXPECT_EQ(Fact("words"), "1");
}

TEST_F(StatsCommandTest, OptionFlagsAndLackOfPositionsAreReported) {
  Add("a", "cat\n");
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    ASSERT_EQ(engine.SetOptionFlag(5), 0);
  }
  const std::string out = Run({"stats", "my.index"}).out;
  EXPECT_NE(out.find("\noption flags: 5\npositions kept: no\n"), std::string::npos) << out;
}

TEST_F(StatsCommandTest, SizesOfRecordsAreReported) {
  Add("a", "cat dog\nmore of it\n");
  EXPECT_EQ(Fact("file"), std::to_string(std::filesystem::file_size(Path("my.index"))) + " bytes");
  EXPECT_EQ(Fact("titles"), "10 bytes");       // t-a, cat dog
  EXPECT_EQ(Fact("name records"), "5 bytes");  // c- and a code, a
  EXPECT_EQ(Fact("words in 1 document"), "5");
}

TEST_F(StatsCommandTest, JsonHasTheSameNumbers) {
  Add("a", "cat dog\n");
  const std::string out = Run({"stats", "my.index", "--json"}).out;
  EXPECT_EQ(out.substr(0, 35), "{\"schema\":1,\"documents\":1,\"words\":2");
  EXPECT_NE(out.find("\"frequencies\":[{\"documents_from\":1,\"documents_to\":1,\"words\":2,"
                     "\"postings\":2}]"),
            std::string::npos)
      << out;
}

TEST_F(StatsCommandTest, ReportsDoNotChangeTheIndex) {
  Add("a", "cat\n");
  const std::string before = IndexBytes();
  Run({"list", "my.index"});
  Run({"stats", "my.index"});
  Run({"words", "my.index", "--counts"});
  EXPECT_EQ(IndexBytes(), before);
}

}  // namespace
}  // namespace kestan_tests
