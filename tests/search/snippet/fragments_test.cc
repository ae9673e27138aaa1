// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/snippet/fragments.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace kestan::search {
namespace {

// The line of `added`, with | between fragments and matches in brackets.
std::string Line(const std::vector<std::pair<std::string, bool>>& added) {
  FragmentLine line;
  for (const auto& [text, matches] : added) line.Add(text, matches);
  std::string joined;
  for (const Fragment& fragment : line.Take()) {
    if (!joined.empty()) joined += "|";
    joined += fragment.matches ? "[" + fragment.text + "]" : fragment.text;
  }
  return joined;
}

TEST(FragmentLineTest, NeighboursThatDoNotMatchAreOneFragment) {
  EXPECT_EQ(Line({{"a ", false}, {"b ", false}, {"c", true}, {" d", false}}), "a b |[c]| d");
}

TEST(FragmentLineTest, MatchesStayApart) {
  EXPECT_EQ(Line({{"a", true}, {"b", true}}), "[a]|[b]");
  EXPECT_EQ(Line({{"a", true}, {" ", false}, {"b", true}}), "[a]| |[b]");
}

TEST(FragmentLineTest, RunsOfWhiteSpaceAndControlsAreOneBlank) {
  EXPECT_EQ(Line({{"a \t", false}, {"\n\x1b b", false}}), "a b");
}

TEST(FragmentLineTest, BlankBeforeAMatchBelongsToTheTextBefore) {
  EXPECT_EQ(Line({{"a", false}, {" b", true}}), "a |[b]");
}

TEST(FragmentLineTest, NoBlanksAreAtTheEnds) {
  EXPECT_EQ(Line({{"  ", false}, {" a", true}, {" \n", false}}), "[a]");
  EXPECT_EQ(Line({{" ", false}, {"\t", false}}), "");
  EXPECT_EQ(Line({}), "");
}

}  // namespace
}  // namespace kestan::search
