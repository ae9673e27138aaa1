// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/run_cache.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestan::search {
namespace {

// So many runs that share the bucket of "0".
std::vector<std::string> RunsOfOneBucket(std::size_t count) {
  std::vector<std::string> runs;
  for (std::size_t number = 0; runs.size() < count; ++number) {
    std::string run = std::to_string(number);
    if (RunCache::BucketOf(run) == RunCache::BucketOf("0")) runs.push_back(std::move(run));
  }
  return runs;
}

TEST(RunCacheTest, WhatIsKeptIsFound) {
  RunCache cache;
  EXPECT_EQ(cache.Find("a"), nullptr);
  EXPECT_EQ(cache.Keep("a", "1"), "1");
  EXPECT_EQ(cache.Keep("", "none"), "none");
  ASSERT_NE(cache.Find("a"), nullptr);
  EXPECT_EQ(*cache.Find("a"), "1");
  EXPECT_EQ(*cache.Find(""), "none");
  EXPECT_EQ(cache.Find("b"), nullptr);
}

TEST(RunCacheTest, AFullBucketHoldsAllItsRuns) {
  RunCache cache;
  const auto runs = RunsOfOneBucket(RunCache::kEntriesOfBucket);
  for (const std::string& run : runs) cache.Keep(run, run + "!");
  for (const std::string& run : runs) EXPECT_EQ(*cache.Find(run), run + "!");
}

TEST(RunCacheTest, AFullBucketDropsItsOldestRun) {
  RunCache cache;
  const auto runs = RunsOfOneBucket(2 * RunCache::kEntriesOfBucket + 1);
  for (const std::string& run : runs) EXPECT_EQ(cache.Keep(run, run + "!"), run + "!");
  const std::size_t dropped = runs.size() - RunCache::kEntriesOfBucket;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const std::string* const found = cache.Find(runs[i]);
    EXPECT_EQ(found == nullptr, i < dropped) << i;
    if (found == nullptr) continue;
    EXPECT_EQ(*found, runs[i] + "!");
  }
}

}  // namespace
}  // namespace kestan::search
