// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/ignore/ignore_pattern.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>
#include <vector>

#include "tests/cli/files/ignore/ignore_generators.h"
#include "tests/cli/files/ignore/plain_ignore.h"

namespace kestan_cli {
namespace {

using Texts = std::vector<std::string>;

bool Matches(const std::string& line, const std::string& path) {
  const auto pattern = IgnorePattern::Parse(line);
  return pattern.has_value() && pattern->Matches(path);
}

// Returns those of `paths` that the line matches.
Texts Matching(const std::string& line, const Texts& paths) {
  Texts matching;
  for (const std::string& path : paths) {
    if (Matches(line, path)) matching.push_back(path);
  }
  return matching;
}

TEST(IgnorePatternTest, NamesMatchAtAnyDepth) {
  EXPECT_EQ(Matching("a", {"a", "b/a", "b/c/a", "ab", "a/b"}), (Texts{"a", "b/a", "b/c/a"}));
}

TEST(IgnorePatternTest, SlashesTieAPatternToTheFolder) {
  EXPECT_EQ(Matching("/a", {"a", "b/a"}), Texts{"a"});
  EXPECT_EQ(Matching("a/b", {"a/b", "c/a/b", "b"}), Texts{"a/b"});
}

TEST(IgnorePatternTest, SlashAtTheEndMeansFolders) {
  EXPECT_TRUE(IgnorePattern::Parse("a/")->is_for_folders_only());
  EXPECT_FALSE(IgnorePattern::Parse("/a")->is_for_folders_only());
  EXPECT_EQ(Matching("a/", {"a", "b/a"}), (Texts{"a", "b/a"}));
}

TEST(IgnorePatternTest, StarsStayInsideANameUnlessThereAreTwo) {
  EXPECT_EQ(Matching("/a/*", {"a/b", "a/b/c", "a"}), Texts{"a/b"});
  EXPECT_EQ(Matching("a/**", {"a/b", "a/b/c", "a", "b/a/c"}), (Texts{"a/b", "a/b/c"}));
  EXPECT_EQ(Matching("**/a", {"a", "b/a", "b/c/a", "ba"}), (Texts{"a", "b/a", "b/c/a"}));
  EXPECT_EQ(Matching("a/**/b", {"a/b", "a/x/b", "a/x/y/b", "ab", "a/xb"}),
            (Texts{"a/b", "a/x/b", "a/x/y/b"}));
  EXPECT_EQ(Matching("**/a/**/b/**", {"a/b/c", "x/a/y/b/z/w", "a/b", "b/a/c"}),
            (Texts{"a/b/c", "x/a/y/b/z/w"}));
}

TEST(IgnorePatternTest, TwoStarsInsideANameAreOne) {
  EXPECT_EQ(Matching("x/a**b", {"x/ab", "x/acb", "x/a/b", "x/ac/b"}), (Texts{"x/ab", "x/acb"}));
  EXPECT_EQ(Matching("a**/b", {"a/b", "ac/b", "ab", "ac/d/b"}), (Texts{"a/b", "ac/b"}));
  EXPECT_EQ(Matching("**", {"a", "a/b"}), (Texts{"a", "a/b"}));
}

TEST(IgnorePatternTest, WildcardsDoNotMatchSlashes) {
  EXPECT_EQ(Matching("/a?b", {"axb", "a/b"}), Texts{"axb"});
  EXPECT_EQ(Matching("/a[!x]b", {"ayb", "axb", "a/b"}), Texts{"ayb"});
}

TEST(IgnorePatternTest, StarsGoBack) {
  EXPECT_TRUE(Matches("*ab*ab*c", "xabababyc"));
  EXPECT_FALSE(Matches("*ab*ab*c", "xababy"));
  EXPECT_TRUE(Matches("**/a/b/c", "a/b/a/b/c"));
  EXPECT_FALSE(Matches("**/a/b/c", "a/b/a/b"));
}

TEST(IgnorePatternTest, BackslashTakesAwayAMeaning) {
  EXPECT_EQ(Matching("\\*", {"*", "a"}), Texts{"*"});
  EXPECT_EQ(Matching("\\#a", {"#a", "a"}), Texts{"#a"});
  EXPECT_EQ(Matching("\\!a", {"!a", "a"}), Texts{"!a"});
  EXPECT_FALSE(IgnorePattern::Parse("\\!a")->is_negated());
  EXPECT_EQ(Matching("a\\/b", {"a/b", "a\\/b"}), Texts{"a/b"});
  EXPECT_TRUE(Matches("a\\\\", "a\\"));
}

TEST(IgnorePatternTest, BlanksAtTheEndNeedABackslash) {
  EXPECT_TRUE(Matches("a  ", "a"));
  EXPECT_TRUE(Matches("a\\  ", "a "));
  EXPECT_TRUE(Matches("a\\ \\ ", "a  "));
  EXPECT_TRUE(Matches("a\\\\ ", "a\\"));
  EXPECT_TRUE(Matches(" a", " a"));
  EXPECT_TRUE(Matches("a\t", "a\t"));
  EXPECT_EQ(IgnorePattern::Parse("*.o ")->text(), "*.o");
}

TEST(IgnorePatternTest, ExclamationMarkNegates) {
  EXPECT_TRUE(IgnorePattern::Parse("!a")->is_negated());
  EXPECT_EQ(Matching("!/a", {"a", "b/a"}), Texts{"a"});
  EXPECT_TRUE(Matches("!!a", "!a"));
}

TEST(IgnorePatternTest, WhatCanMatchNothingIsNoPattern) {
  for (const char* line : {"", " ", "#a", "!", "/", "//", "!/", "a//b", "//a", "a//", "[", "a[b",
                           "[[:no:]]", "a\\", "a\\/", "\\/a", "**//a"}) {
    EXPECT_FALSE(IgnorePattern::Parse(line).has_value()) << line;
  }
}

TEST(IgnorePatternTest, PatternsAreAsLongAsPathsAtMost) {
  EXPECT_TRUE(IgnorePattern::Parse(std::string(4096, 'a')).has_value());
  EXPECT_FALSE(IgnorePattern::Parse(std::string(4097, 'a')).has_value());
}

TEST(IgnorePatternTest, LiteralsAreKnown) {
  EXPECT_EQ(IgnorePattern::Parse("/a/b\\*/")->Literal(), "a/b*");
  EXPECT_EQ(IgnorePattern::Parse("!a")->Literal(), "a");
  EXPECT_EQ(IgnorePattern::Parse("a*")->Literal(), std::nullopt);
  EXPECT_EQ(IgnorePattern::Parse("**/a")->Literal(), std::nullopt);
}

TEST(IgnorePatternTest, BytesThatAreNotUtf8AreBytes) {
  EXPECT_TRUE(Matches("\xff?", "\xff\xfe"));
  EXPECT_FALSE(Matches("?", "\xc3\xbc"));
}

TEST(IgnorePatternTest, ManyStarsTakeNoLongTime) {
  std::string line;
  for (int i = 0; i < 1000; ++i) line += "*a";
  EXPECT_FALSE(Matches(line + "b", std::string(255, 'a')));
  std::string deep;
  std::string path;
  for (int i = 0; i < 500; ++i) deep += "**/a/";
  for (int i = 0; i < 1000; ++i) path += "a/";
  EXPECT_FALSE(Matches(deep + "b", path + "c"));
}

TEST(IgnorePatternTest, AgreesWithTryingEverything) {
  const bool holds = rc::check([] {
    const std::string line = *kestan_tests::IgnoreLine();
    const Texts paths = *rc::gen::container<Texts>(50, kestan_tests::PathOfAFile());
    const auto pattern = IgnorePattern::Parse(line);
    for (const std::string& path : paths) {
      for (const bool is_folder : {false, true}) {
        const bool matches = pattern.has_value() && pattern->Matches(path) &&
                             (is_folder || !pattern->is_for_folders_only());
        RC_LOG() << line << "   " << path << "\n";
        RC_ASSERT(matches == kestan_tests::PlainLineMatches(line, path, is_folder));
      }
    }
  });
  EXPECT_TRUE(holds);
}

}  // namespace
}  // namespace kestan_cli
