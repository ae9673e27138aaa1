// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/glob.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan_cli {
namespace {

bool Matches(const std::string& pattern, const std::string& path) {
  return Glob(pattern).Matches(path);
}

TEST(GlobTest, PlainPatternMatchesItselfOnly) {
  EXPECT_TRUE(Matches("a/b.txt", "a/b.txt"));
  EXPECT_FALSE(Matches("a/b.txt", "a/b.txt2"));
  EXPECT_FALSE(Matches("a/b.txt", "xa/b.txt"));
  EXPECT_FALSE(Matches("", "a"));
}

TEST(GlobTest, StarStaysInItsFolder) {
  EXPECT_TRUE(Matches("*.txt", "a.txt"));
  EXPECT_TRUE(Matches("*.txt", ".txt"));
  EXPECT_FALSE(Matches("*.txt", "d/a.txt"));
  EXPECT_TRUE(Matches("d/*", "d/a"));
  EXPECT_FALSE(Matches("d/*", "d/e/a"));
  EXPECT_TRUE(Matches("a*b*c", "axxbyyc"));
  EXPECT_FALSE(Matches("a*b*c", "axxbyy"));
}

TEST(GlobTest, TwoStarsCrossFolders) {
  EXPECT_TRUE(Matches("d/**", "d/e/f"));
  EXPECT_FALSE(Matches("d/**", "d"));
  EXPECT_TRUE(Matches("**", "d/e"));
  EXPECT_TRUE(Matches("a**z", "a/b/z"));
}

TEST(GlobTest, TwoStarsAndASlashAreAnyFoldersOrNone) {
  EXPECT_TRUE(Matches("**/a", "a"));
  EXPECT_TRUE(Matches("**/a", "d/e/a"));
  EXPECT_FALSE(Matches("**/a", "da"));
  EXPECT_FALSE(Matches("**/a", "d/ea"));
  EXPECT_TRUE(Matches("d/**/a", "d/a"));
  EXPECT_TRUE(Matches("d/**/a", "d/e/f/a"));
  EXPECT_FALSE(Matches("d/**/a", "d/e/f/ab"));
  EXPECT_TRUE(Matches("**/**/a", "x/a"));
}

TEST(GlobTest, QuestionMarkIsOneCharacter) {
  EXPECT_TRUE(Matches("?", "a"));
  EXPECT_TRUE(Matches("?", "\u00fc"));
  EXPECT_TRUE(Matches("?", "\xfc"));
  EXPECT_FALSE(Matches("?", "/"));
  EXPECT_FALSE(Matches("?", ""));
  EXPECT_FALSE(Matches("?", "ab"));
}

TEST(GlobTest, SetsAreOneOfTheirCharacters) {
  EXPECT_TRUE(Matches("[abc]", "b"));
  EXPECT_FALSE(Matches("[abc]", "d"));
  EXPECT_TRUE(Matches("[a-c]", "b"));
  EXPECT_TRUE(Matches("[!a-c]", "d"));
  EXPECT_FALSE(Matches("[^a-c]", "b"));
  EXPECT_FALSE(Matches("[!a]", "/"));
  EXPECT_TRUE(Matches("[]]", "]"));
  EXPECT_TRUE(Matches("[a-]", "-"));
  EXPECT_TRUE(Matches("[\u00e0-\u00ff]", "\u00fc"));
}

TEST(GlobTest, OpenSetStandsForItself) {
  EXPECT_TRUE(Matches("[a", "[a"));
  EXPECT_TRUE(Matches("[]", "[]"));
}

TEST(GlobTest, BackslashTakesSignsAsTheyAre) {
  EXPECT_TRUE(Matches("\\*", "*"));
  EXPECT_FALSE(Matches("\\*", "a"));
  EXPECT_TRUE(Matches("\\", "\\"));
}

TEST(GlobTest, SlashAtTheEndIsIgnored) { EXPECT_TRUE(Matches("build/", "build")); }

TEST(GlobTest, ManyStarsTakeNoLongerThanTheyMust) {
  std::string pattern;
  for (int i = 0; i < 100; ++i) pattern += "*a";
  EXPECT_FALSE(Matches(pattern + "b", std::string(2000, 'a')));
}

TEST(GlobTest, GlobsMayBeCopied) {
  std::vector<Glob> globs;
  for (int i = 0; i < 10; ++i) globs.emplace_back("[ab]*");
  for (const Glob& glob : globs) EXPECT_TRUE(glob.Matches("bx"));
}

TEST(NameFilterTest, EmptyFilterTakesAll) { EXPECT_EQ(NameFilter().ReasonAgainst("a", false), ""); }

TEST(NameFilterTest, PatternsAreHeldAgainstPathAndName) {
  const NameFilter filter{{}, {Glob("*.o"), Glob("d/*.txt")}};
  EXPECT_EQ(filter.ReasonAgainst("x/y/a.o", false), "excluded by '*.o'");
  EXPECT_EQ(filter.ReasonAgainst("d/a.txt", false), "excluded by 'd/*.txt'");
  EXPECT_EQ(filter.ReasonAgainst("x/d/a.txt", false), "");
}

TEST(NameFilterTest, ExcludesWin) {
  const NameFilter filter{{Glob("*.txt")}, {Glob("a*")}};
  EXPECT_EQ(filter.ReasonAgainst("b.txt", false), "");
  EXPECT_EQ(filter.ReasonAgainst("a.txt", false), "excluded by 'a*'");
  EXPECT_EQ(filter.ReasonAgainst("b.md", false), "not included");
}

TEST(NameFilterTest, FoldersNeedNotBeIncluded) {
  const NameFilter filter{{Glob("*.txt")}, {Glob("x")}};
  EXPECT_EQ(filter.ReasonAgainst("d", true), "");
  EXPECT_EQ(filter.ReasonAgainst("d/x", true), "excluded by 'x'");
}

}  // namespace
}  // namespace kestan_cli
