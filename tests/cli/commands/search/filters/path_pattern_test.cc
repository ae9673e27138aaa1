// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/path_pattern.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestan_cli {
namespace {

bool Matches(const std::string& pattern, const std::string& path) {
  return PathPattern(pattern).Matches(path);
}

TEST(PathPatternTest, TextOccursAnywhere) {
  EXPECT_TRUE(Matches("doc", "my/docs/a.txt"));
  EXPECT_TRUE(Matches("docs/a", "my/docs/a.txt"));
  EXPECT_TRUE(Matches("[x]", "a[x]b"));
  EXPECT_FALSE(Matches("dogs", "my/docs/a.txt"));
}

TEST(PathPatternTest, CapitalsDoNotCount) {
  EXPECT_TRUE(Matches("DOCS", "my/docs/a.txt"));
  EXPECT_TRUE(Matches("docs", "My/Docs/a.txt"));
  EXPECT_TRUE(Matches("m\xc3\x9cnchen", "M\xc3\xbcNCHEN"));
  EXPECT_TRUE(Matches("*.TXT", "my/docs/a.txt"));
}

TEST(PathPatternTest, GlobMatchesTheWholePathOrWhatFollowsASlash) {
  EXPECT_TRUE(Matches("*.txt", "my/docs/a.txt"));
  EXPECT_TRUE(Matches("docs/?.txt", "my/docs/a.txt"));
  EXPECT_TRUE(Matches("my/*/a.*", "my/docs/a.txt"));
  EXPECT_TRUE(Matches("docs/**", "my/docs/b/a.txt"));
  EXPECT_FALSE(Matches("docs/*", "my/docs/b/a.txt"));
  EXPECT_FALSE(Matches("ocs/?.txt", "my/docs/a.txt"));
  EXPECT_FALSE(Matches("*.tx", "my/docs/a.txt"));
}

TEST(PathPatternTest, GlobMatchesPathsFromTheRoot) {
  EXPECT_TRUE(Matches("*.txt", "/a.txt"));
  EXPECT_TRUE(Matches("/*.txt", "/a.txt"));
  EXPECT_TRUE(Matches("/my/**", "/my/docs/a.txt"));
  EXPECT_TRUE(Matches("docs/*", "/my/docs/a.txt"));
  EXPECT_FALSE(Matches("/docs/*", "my/docs/a.txt"));
}

// The slow, plain twin: the glob, put to each part of the path.
TEST(PathPatternTest, GlobMatchesWhatItMatchesPartByPart) {
  const auto by_parts = [](const std::string& pattern, std::string_view path) {
    const Glob glob(pattern);
    while (!glob.Matches(path)) {
      const std::size_t slash = path.find('/');
      if (slash == std::string_view::npos) return false;
      path.remove_prefix(slash + 1);
    }
    return true;
  };
  const std::vector<std::string> parts{"", "a", "b", "/", "a/", "*", "?", "**", "**/", "ab"};
  for (const std::string& first : parts) {
    for (const std::string& second : parts) {
      for (const std::string& third : parts) {
        const std::string pattern = first + second + third;
        if (pattern.find_first_of("*?") == std::string::npos) continue;
        for (const char* const path : {"a", "ab", "/a", "/a/b", "a/b", "a/ab/b", "/b/a/", "//a"}) {
          EXPECT_EQ(Matches(pattern, path), by_parts(pattern, path)) << pattern << " " << path;
        }
      }
    }
  }
}

TEST(PathPatternTest, BytesThatAreNotUtf8AreThemselves) {
  EXPECT_TRUE(Matches("a\xff", "x/a\xff"));
  EXPECT_FALSE(Matches("a\xff", "x/a\xfe"));
}

}  // namespace
}  // namespace kestan_cli
