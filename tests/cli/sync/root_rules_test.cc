// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/root_rules.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "cli/console/message.h"
#include "tests/cli/command_test.h"

namespace kestan_cli {
namespace {

class RootRulesTest : public kestan_tests::CommandTest {
 protected:
  void SetUp() override { std::filesystem::current_path(Path("")); }
  void TearDown() override { std::filesystem::current_path("/"); }
};

TEST_F(RootRulesTest, FileIsReadAsItsInnermostRootSays) {
  Roots roots;
  roots["/a"].reading.stop_words = "english";
  roots["/a/b"].reading.strip_encoded = true;
  RootRules rules(roots, "my.index", {}, 1000);
  EXPECT_NE(rules.Of("/a/x").words.stop_words, "");
  EXPECT_FALSE(rules.Of("/a/x").words.strip_encoded);
  EXPECT_EQ(rules.Of("/a/b/x").words.stop_words, "");
  EXPECT_TRUE(rules.Of("/a/b/x").words.strip_encoded);
  EXPECT_FALSE(rules.Of("/c").words.strip_encoded);
  EXPECT_EQ(rules.Of("/c").max_bytes, 1000u);
}

TEST_F(RootRulesTest, ConverterThatIsNoneIsRefused) {
  Roots roots;
  roots["/a"].reading.converters = {"pdf"};
  roots["/a"].is_given_now = true;
  RootRules rules(roots, "my.index", {}, 1000);
  EXPECT_THROW(rules.Of("/a/x"), CommandError);
}

TEST_F(RootRulesTest, ConverterThatWasNotGivenHereIsRefused) {
  Roots roots;
  roots["/a"].reading.converters = {"x=cat {}"};
  RootRules rules(roots, "my.index", {}, 1000);
  EXPECT_THROW(rules.Of("/a/x"), CommandError);
  EXPECT_NO_THROW(rules.Of("/b"));
}

TEST_F(RootRulesTest, PathsOfProgramsAndStopWordsBecomeAbsolute) {
  ReadingOptions options;
  options.converters = {"x=./tool {}", "y=../tool -a {}", "z=tool {}", "w=/bin/cat {}", "v",
                        "u=d/t"};
  options.stop_words = "d/../stop";
  const ReadingOptions absolute = WithAbsolutePaths(options);
  const std::string above = std::filesystem::path(Path("x")).parent_path().parent_path();
  EXPECT_EQ(absolute.converters,
            (std::vector<std::string>{"x=" + Path("tool") + " {}", "y=" + above + "/tool -a {}",
                                      "z=tool {}", "w=/bin/cat {}", "v", "u=" + Path("d/t")}));
  EXPECT_EQ(absolute.stop_words, Path("stop"));
  options.stop_words = "english";
  EXPECT_EQ(WithAbsolutePaths(options).stop_words, "english");
  options.stop_words = "";
  EXPECT_EQ(WithAbsolutePaths(options).stop_words, "");
}

TEST_F(RootRulesTest, ProgramInAFolderWithABlankIsRefused) {
  std::filesystem::create_directory("a b");
  std::filesystem::current_path("a b");
  ReadingOptions options;
  options.converters = {"x=./tool {}"};
  EXPECT_THROW(WithAbsolutePaths(options), CommandError);
}

}  // namespace
}  // namespace kestan_cli
