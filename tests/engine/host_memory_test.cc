// SPDX-License-Identifier: GPL-3.0-or-later
// The allocation that hosts may use too.
#include <gtest/gtest.h>
#include <kestan/kestan.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "tests/support/index_test.h"
#include "tests/support/out_of_memory.h"

namespace kestan_tests {
namespace {

TEST(SafeMallocTest, GivesAsManyBytesAsAskedFor) {
  char* const block = static_cast<char*>(Kestan::SafeMalloc(1000));
  std::memset(block, 'x', 1000);
  EXPECT_EQ(block[999], 'x');
  std::free(block);
}

TEST(SafeMallocTest, ServesNoBytesToo) {
  errno = ENOMEM;  // if the process ended here, it would be with this status
  void* const block = Kestan::SafeMalloc(0);
  EXPECT_NE(block, nullptr);
  std::free(block);
}

TEST(SafeMallocTest, PrintsNothingWhereThereIsMemory) {
  EXPECT_EQ(StandardErrorOf([] { std::free(Kestan::SafeMalloc(1)); }), "");
}

TEST(SafeReallocTest, AllocatesForANullPointer) {
  char* const block = static_cast<char*>(Kestan::SafeRealloc(nullptr, 10));
  std::memset(block, 'x', 10);
  std::free(block);
}

TEST(SafeReallocTest, KeepsTheBytes) {
  char* block = static_cast<char*>(Kestan::SafeMalloc(4));
  std::memcpy(block, "word", 4);
  block = static_cast<char*>(Kestan::SafeRealloc(block, 1000000));
  EXPECT_EQ(std::string(block, 4), "word");
  block = static_cast<char*>(Kestan::SafeRealloc(block, 2));
  EXPECT_EQ(std::string(block, 2), "wo");
  std::free(block);
}

TEST(SafeReallocTest, ToNoBytesLeavesABlockToFree) {
  errno = ENOMEM;  // if the process ended here, it would be with this status
  void* block = Kestan::SafeMalloc(10);
  block = Kestan::SafeRealloc(block, 0);
  ASSERT_NE(block, nullptr);
  block = Kestan::SafeRealloc(block, 10);
  std::free(block);
}

TEST(SafeReallocTest, OfNothingToNoBytesLeavesABlockToFree) {
  errno = ENOMEM;  // if the process ended here, it would be with this status
  void* const block = Kestan::SafeRealloc(nullptr, 0);
  EXPECT_NE(block, nullptr);
  std::free(block);
}

TEST(SafeMallocDeathTest, EndsTheProcessWhenMemoryRunsOut) {
  EXPECT_EXIT(
      {
        LimitMemory();
        Kestan::SafeMalloc(kTooManyBytes);
      },
      testing::ExitedWithCode(ENOMEM), IsLine(NoMemoryLine(kTooManyBytes)));
}

TEST(SafeReallocDeathTest, EndsTheProcessWhenMemoryRunsOut) {
  EXPECT_EXIT(
      {
        LimitMemory();
        Kestan::SafeRealloc(nullptr, kTooManyBytes);
      },
      testing::ExitedWithCode(ENOMEM), IsLine(NoMemoryLine(kTooManyBytes)));
}

TEST(SafeReallocDeathTest, EndsTheProcessWhenABlockCannotGrow) {
  EXPECT_EXIT(
      {
        LimitMemory();
        static void* block = Kestan::SafeMalloc(8);  // static: leak checks must find it at the end
        Kestan::SafeRealloc(block, kTooManyBytes - 1);
      },
      testing::ExitedWithCode(ENOMEM), IsLine(NoMemoryLine(kTooManyBytes - 1)));
}

}  // namespace
}  // namespace kestan_tests
