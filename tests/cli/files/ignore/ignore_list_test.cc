// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/ignore/ignore_list.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/cli/files/ignore/ignore_generators.h"
#include "tests/cli/files/ignore/plain_ignore.h"

namespace kestan_cli {
namespace {

// Returns the number and the text of the line that decides about `path`; "" if none does.
std::string Deciding(const std::string& bytes, const std::string& path, bool is_folder = false) {
  const IgnoreList list(bytes);
  const IgnoreList::Match match = list.Find(path, is_folder);
  return match.pattern == nullptr ? "" : std::to_string(match.line) + " " + match.pattern->text();
}

TEST(IgnoreListTest, LastLineThatMatchesDecides) {
  EXPECT_EQ(Deciding("*.o\n!a.o\n", "a.o"), "2 !a.o");
  EXPECT_EQ(Deciding("!a.o\n*.o\n", "a.o"), "2 *.o");
  EXPECT_EQ(Deciding("a.o\n*.o\n/a.o\n", "a.o"), "3 /a.o");
  EXPECT_EQ(Deciding("a.o\n*.o\n/a.o\n", "d/a.o"), "2 *.o");
  EXPECT_EQ(Deciding("a\nb\na\n", "a"), "3 a");
  EXPECT_EQ(Deciding("a\n", "b"), "");
}

TEST(IgnoreListTest, PatternsOfFoldersMatchNoFiles) {
  EXPECT_EQ(Deciding("a\n!a/\n", "a", false), "1 a");
  EXPECT_EQ(Deciding("a\n!a/\n", "a", true), "2 !a/");
  EXPECT_EQ(Deciding("a*/\n", "ab", false), "");
  EXPECT_EQ(Deciding("a*/\n", "ab", true), "1 a*/");
  EXPECT_EQ(Deciding("/a/b/\n/a/b\n", "a/b", true), "2 /a/b");
}

TEST(IgnoreListTest, LinesAreCountedAsTheyStand) { EXPECT_EQ(Deciding("# why\n\na", "a"), "3 a"); }

TEST(IgnoreListTest, MarkAndCarriageReturnsDoNotCount) {
  EXPECT_EQ(Deciding("\xef\xbb\xbf"
                     "a\r\nb\r",
                     "a"),
            "1 a");
  EXPECT_EQ(Deciding("a\r\nb\r", "b\r"), "2 b\r");  // not before a line feed
  EXPECT_EQ(Deciding("\r\n\n", "a"), "");
}

TEST(IgnoreListTest, NulEndsALine) {
  EXPECT_EQ(Deciding(std::string("a\0b\nc", 5), "a"), "1 a");
  EXPECT_EQ(Deciding(std::string("a\0b\nc", 5), "c"), "2 c");
}

TEST(IgnoreListTest, ListsWithoutPatternsAreEmpty) {
  EXPECT_TRUE(IgnoreList("").empty());
  EXPECT_TRUE(IgnoreList("# nothing\n\n  \n[\n").empty());
  EXPECT_FALSE(IgnoreList("a").empty());
}

TEST(IgnoreListTest, AnyBytesAreAList) {
  std::mt19937 random(7);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same bytes every time
  const std::string signs = std::string("/*?[]!^-\\ \n#a", 13) + '\0' + '\xff';
  for (int i = 0; i < 2000; ++i) {
    std::string bytes;
    for (int length = static_cast<int>(random() % 40); length > 0; --length) {
      bytes += signs[random() % signs.size()];
    }
    for (const char* path : {"a", "a/a", "!", "\\", "-/a/a"}) Deciding(bytes, path, i % 2 == 0);
  }
}

TEST(IgnoreListTest, ThousandsOfPatternsAreFound) {
  std::string bytes;
  for (int i = 0; i < 20000; ++i) bytes += "name" + std::to_string(i) + "\n";
  const IgnoreList list(bytes);
  for (int i = 0; i < 20000; ++i) {
    const auto match = list.Find("d/name" + std::to_string(i), false);
    ASSERT_NE(match.pattern, nullptr);
    ASSERT_EQ(match.line, static_cast<std::size_t>(i) + 1);
  }
}

TEST(IgnoreListTest, AgreesWithTryingEverything) {
  const bool holds = rc::check([] {
    const std::vector<std::string> lines = *kestan_tests::IgnoreLines();
    const auto paths =
        *rc::gen::container<std::vector<std::string>>(50, kestan_tests::PathOfAFile());
    std::string bytes;
    for (const std::string& line : lines) bytes += line + "\n";
    const IgnoreList list(bytes);
    for (const std::string& path : paths) {
      for (const bool is_folder : {false, true}) {
        const IgnorePattern* const pattern = list.Find(path, is_folder).pattern;
        const bool is_ignored = pattern != nullptr && !pattern->is_negated();
        RC_LOG() << bytes << path << "\n";
        RC_ASSERT(is_ignored == kestan_tests::PlainIsIgnored(lines, path, is_folder));
      }
    }
  });
  EXPECT_TRUE(holds);
}

}  // namespace
}  // namespace kestan_cli
