// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/snippet/window.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace kestan::search {
namespace {

// Matches of one byte, each at its place.
std::vector<TermMatch> Matches(
    const std::vector<std::pair<std::size_t, std::string_view>>& places) {
  std::vector<TermMatch> matches;
  for (const auto& [start, term] : places) matches.push_back({start, start + 1, term});
  return matches;
}

TEST(WindowTest, MoreDifferentTermsWin) {
  const Window best = BestWindow(Matches({{0, "a"}, {1, "a"}, {2, "a"}, {50, "a"}, {51, "b"}}), 10);
  EXPECT_EQ(best.first, 3u);
  EXPECT_EQ(best.last, 5u);
  EXPECT_EQ(best.different_terms, 2u);
}

TEST(WindowTest, ThenMoreMatchesWin) {
  const Window best = BestWindow(Matches({{0, "a"}, {50, "a"}, {52, "a"}}), 10);
  EXPECT_EQ(best.first, 1u);
  EXPECT_EQ(best.last, 3u);
}

TEST(WindowTest, FirstOfEqualsWins) {
  const Window best = BestWindow(Matches({{0, "a"}, {50, "b"}}), 10);
  EXPECT_EQ(best.first, 0u);
  EXPECT_EQ(best.last, 1u);
}

TEST(WindowTest, SpansAtMostItsBytes) {
  EXPECT_EQ(BestWindow(Matches({{0, "a"}, {9, "b"}}), 10).last, 2u);
  EXPECT_EQ(BestWindow(Matches({{0, "a"}, {10, "b"}}), 10).last, 1u);
}

TEST(WindowTest, LongMatchIsAWindowByItself) {
  const Window best = BestWindow({{0, 30, "a"}, {31, 32, "a"}}, 10);
  EXPECT_EQ(best.first, 0u);
  EXPECT_EQ(best.last, 1u);
}

TEST(WindowTest, WithoutMatchesThereIsNone) { EXPECT_EQ(BestWindow({}, 10).different_terms, 0u); }

}  // namespace
}  // namespace kestan::search
