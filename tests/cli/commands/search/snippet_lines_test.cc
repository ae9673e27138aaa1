// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/snippet_lines.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "cli/console/columns.h"

namespace kestan_cli {
namespace {

using kestan::search::Fragment;
using Lines = std::vector<std::string>;

// Returns fragments of `text`, whose matches are in braces.
std::vector<Fragment> Snippet(const std::string& text) {
  std::vector<Fragment> fragments(1);
  for (const char letter : text) {
    if (letter == '{' || letter == '}') {
      fragments.push_back({"", letter == '{'});
    } else {
      fragments.back().text += letter;
    }
  }
  return fragments;
}

Lines Plain(const std::string& text, std::size_t columns) {
  return SnippetLines(Snippet(text), false, columns);
}

TEST(SnippetLinesTest, ShortSnippetIsOneLine) {
  EXPECT_EQ(Plain("the {cat} sat", 80), Lines{"the [cat] sat"});
  EXPECT_EQ(Plain("the {cat} sat on a mat", 22), Lines{"the [cat] sat on a mat"});
  EXPECT_EQ(Plain("", 80), Lines{});
}

TEST(SnippetLinesTest, BracketsTakeRoom) {
  EXPECT_EQ(Plain("the {cat} sat on a mat", 21), (Lines{"the [cat] sat on a", "mat"}));
}

TEST(SnippetLinesTest, LongSnippetIsCutToTwoLines) {
  EXPECT_EQ(Plain("the {cat} sat there and saw another one in the garden", 20),
            (Lines{"the [cat] sat there", "and saw another ..."}));
}

TEST(SnippetLinesTest, PartWithTheMostMatchesIsShown) {
  EXPECT_EQ(Plain("one two three four five six seven eight the {cat} and a {dog} met", 20),
            (Lines{"... eight the [cat]", "and a [dog] met"}));
  EXPECT_EQ(Plain("one {ox} two three four five six seven eight nine ten {cat}", 20),
            (Lines{"one [ox] two three", "four five six ..."}));
}

TEST(SnippetLinesTest, LongWordsAreBrokenAnywhere) {
  EXPECT_EQ(Plain("abcdefghijklmnopqrst{cat}", 16), (Lines{"abcdefghijklmnop", "qrst[cat]"}));
}

TEST(SnippetLinesTest, ColoursTakeNoRoomAndEndWithTheirLine) {
  EXPECT_EQ(SnippetLines(Snippet("the {cat} sat on a mat"), true, 20),
            Lines{"the \x1b[1;31mcat\x1b[0m sat on a mat"});
  EXPECT_EQ(SnippetLines(Snippet("abcdefghijklmn{cats}"), true, 16),
            (Lines{"abcdefghijklmn\x1b[1;31mca\x1b[0m", "\x1b[1;31mts\x1b[0m"}));
}

TEST(SnippetLinesTest, ControlCharactersAreEscaped) {
  EXPECT_EQ(Plain("a\x1b[2J{c\a}", 80), Lines{"a\\x1b[2J[c\\x07]"});
}

std::string Without(std::string text, const std::string& bytes) {
  text.erase(std::remove_if(text.begin(), text.end(),
                            [&](char byte) { return bytes.find(byte) != std::string::npos; }),
             text.end());
  return text;
}

RC_GTEST_PROP(SnippetLinesPropertyTest, NoLineIsTooLongAndAMatchIsShown, ()) {
  const auto words = *rc::gen::nonEmpty(rc::gen::container<std::vector<std::string>>(
      rc::gen::element<std::string>("a", "cats", "{cat}", "\xe5\x8c\x97\xe4\xba\xac", "e\xcc\x81",
                                    "{\xf0\x9f\x98\x80}", "internationalisation")));
  const auto columns = *rc::gen::inRange<std::size_t>(16, 60);
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  const Lines lines = Plain(text, columns);
  RC_ASSERT(lines.size() == 1 || lines.size() == 2);
  std::string all;
  for (const std::string& line : lines) {
    RC_ASSERT(ColumnsOf(line) <= columns);
    all += line;
  }
  const bool has_match = text.find('{') != std::string::npos;
  RC_ASSERT(has_match == (all.find('[') != std::string::npos));
  const bool is_whole = all.find("...") == std::string::npos;
  if (is_whole) RC_ASSERT(Without(all, " []") == Without(text, " {}"));
}

}  // namespace
}  // namespace kestan_cli
