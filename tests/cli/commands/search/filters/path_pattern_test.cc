#include "cli/commands/search/filters/path_pattern.h"

#include <gtest/gtest.h>

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

TEST(PathPatternTest, BytesThatAreNotUtf8AreThemselves) {
  EXPECT_TRUE(Matches("a\xff", "x/a\xff"));
  EXPECT_FALSE(Matches("a\xff", "x/a\xfe"));
}

}  // namespace
}  // namespace kestan_cli
