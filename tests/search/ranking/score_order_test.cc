// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/ranking/score_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <vector>

namespace kestan::search {
namespace {

// Documents with scores that repeat, in segments that say where they stood.
std::vector<RankedDocument> Documents(std::size_t count, double unit) {
  std::mt19937 random(static_cast<unsigned>(count));
  std::vector<RankedDocument> documents;
  for (std::size_t i = 0; i < count; ++i) {
    documents.push_back(
        {{static_cast<std::uint32_t>(i), 1}, unit * static_cast<double>(random() % 700)});
  }
  return documents;
}

void ExpectSorted(std::vector<RankedDocument> documents) {
  auto expected = documents;
  std::stable_sort(expected.begin(), expected.end(),
                   [](const auto& left, const auto& right) { return left.score > right.score; });
  SortByScore(&documents);
  ASSERT_EQ(documents.size(), expected.size());
  for (std::size_t i = 0; i < documents.size(); ++i) {
    ASSERT_EQ(documents[i].score, expected[i].score) << i;
    ASSERT_EQ(documents[i].id.segment, expected[i].id.segment) << i;
  }
}

TEST(ScoreOrderTest, HighestScoreComesFirstAndEqualOnesStay) {
  for (const std::size_t count : {0u, 1u, 2u, 1000u, 1001u, 20000u}) {
    ExpectSorted(Documents(count, 0.1));
    ExpectSorted(Documents(count, 1e-300));
    ExpectSorted(Documents(count, 1e17 / 3));
  }
}

TEST(ScoreOrderTest, ScoresThatAreAllEqualStay) { ExpectSorted(Documents(5000, 0)); }

}  // namespace
}  // namespace kestan::search
