// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/process/first_use.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

namespace kestan::search {
namespace {

TEST(FirstUseTest, AValueIsMadeOnce) {
  static FirstUse<int> value;
  static std::atomic<int> made{0};
  std::vector<std::thread> threads;
  std::atomic<int> sum{0};
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] { sum += value.Get([] { return ++made; }); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(made, 1);
  EXPECT_EQ(sum, 8);
}

TEST(FirstUseTest, WhatCannotBeMadeIsTriedAgain) {
  static FirstUse<int> value;
  EXPECT_THROW(value.Get([]() -> int { throw std::runtime_error("not yet"); }), std::runtime_error);
  EXPECT_EQ(value.Get([] { return 7; }), 7);
}

TEST(FirstUseTest, WhatIsMadeMayNeedAnother) {
  static FirstUse<int> outer;
  static FirstUse<int> inner;
  EXPECT_EQ(outer.Get([] { return inner.Get([] { return 1; }) + 1; }), 2);
}

TEST(FirstUseTest, AChildFindsWhatAThreadOfItsParentWasMaking) {
  static FirstUse<int> value;
  std::atomic<bool> is_making{false};
  std::thread maker([&] {
    value.Get([&] {
      is_making = true;
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      return 5;
    });
  });
  while (!is_making) std::this_thread::yield();
  const pid_t child = fork();
  if (child == 0) {
    alarm(20);
    _exit(value.Get([] { return 6; }));
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  maker.join();
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 5);
}

TEST(FirstUseTest, AChildCanMakeWhatItNeeds) {
  static FirstUse<int> value;
  const pid_t child = fork();
  if (child == 0) {
    alarm(20);
    _exit(value.Get([] { return 4; }));
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 4);
}

}  // namespace
}  // namespace kestan::search
