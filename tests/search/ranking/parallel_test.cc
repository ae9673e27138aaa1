// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/ranking/parallel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <new>
#include <numeric>
#include <thread>
#include <vector>

namespace kestan::search {
namespace {

TEST(ParallelTest, EachTaskRunsOnce) {
  for (const std::size_t threads : {0u, 1u, 2u, 8u}) {
    std::vector<int> times(100);
    ParallelFor(times.size(), threads, [&](std::size_t i) { ++times[i]; });
    EXPECT_EQ(times, std::vector<int>(100, 1)) << threads;
  }
}

TEST(ParallelTest, NoTasksAreDoneAtOnce) {
  ParallelFor(0, 4, [](std::size_t) { FAIL(); });
}

TEST(ParallelTest, OneThreadIsTheCallers) {
  const std::thread::id caller = std::this_thread::get_id();
  ParallelFor(3, 1, [&](std::size_t) { EXPECT_EQ(std::this_thread::get_id(), caller); });
}

TEST(ParallelTest, ExceptionOfATaskReachesTheCaller) {
  for (const std::size_t threads : {1u, 4u}) {
    const auto fail = [](std::size_t i) {
      if (i == 3) throw std::bad_alloc();
    };
    EXPECT_THROW(ParallelFor(8, threads, fail), std::bad_alloc) << threads;
  }
}

}  // namespace
}  // namespace kestan::search
