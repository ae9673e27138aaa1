// SPDX-License-Identifier: GPL-3.0-or-later
// Memory that is there or ends the process.
#include <kestan/storage/memory/memory.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tests/support/out_of_memory.h"

namespace kestan_tests {
namespace {

TEST(MemoryTest, AllocatedBytesCanAllBeWritten) {
  char* const block = static_cast<char*>(kestan::Allocate(100));
  std::memset(block, 'x', 100);
  std::free(block);
}

TEST(MemoryTest, NoBytesAreServedToo) {
  errno = ENOMEM;  // if the process ended here, it would be with this status
  void* const block = kestan::Allocate(0);
  EXPECT_NE(block, nullptr);
  std::free(block);
}

TEST(MemoryTest, ReallocatedMemoryKeepsItsBytes) {
  char* block = static_cast<char*>(kestan::Allocate(4));
  std::memcpy(block, "word", 4);
  block = static_cast<char*>(kestan::Reallocate(block, 100000));
  EXPECT_EQ(std::string(block, 4), "word");
  std::free(block);
}

TEST(MemoryTest, SlackIsTakenWhereThereIsMemoryForIt) {
  std::size_t roomy = 100;
  void* block = kestan::ReallocateWithSlack(nullptr, 10, &roomy);
  std::memset(block, 'x', 100);
  EXPECT_EQ(roomy, 100u);

  roomy = SIZE_MAX / 2;
  block = kestan::ReallocateWithSlack(block, 200, &roomy);
  EXPECT_EQ(static_cast<char*>(block)[99], 'x');
  EXPECT_EQ(roomy, 200u);
  std::free(block);
}

TEST(MemoryTest, ReallocatingNothingAllocates) {
  char* const block = static_cast<char*>(kestan::Reallocate(nullptr, 3));
  std::memcpy(block, "abc", 3);
  std::free(block);
}

TEST(MemoryTest, ReallocatingToNoBytesStillOwnsABlock) {
  errno = ENOMEM;  // if the process ended here, it would be with this status
  void* block = kestan::Allocate(10);
  block = kestan::Reallocate(block, 0);
  EXPECT_NE(block, nullptr);
  std::free(block);
}

TEST(MemoryTest, NewPassesItsArgumentsOn) {
  const std::string* const text = kestan::New<std::string>(std::size_t{3}, 'x');
  EXPECT_EQ(*text, "xxx");
  delete text;
}

TEST(MemoryDeathTest, AllocateEndsTheProcessWithErrno) {
  EXPECT_EXIT(
      {
        LimitMemory();
        kestan::Allocate(kTooManyBytes);
      },
      testing::ExitedWithCode(ENOMEM), IsLine(NoMemoryLine(kTooManyBytes)));
}

TEST(MemoryDeathTest, ReallocateEndsTheProcessWithErrno) {
  EXPECT_EXIT(
      {
        LimitMemory();
        static void* block = kestan::Allocate(1);  // static: leak checks must find it at the end
        kestan::Reallocate(block, kTooManyBytes);
      },
      testing::ExitedWithCode(ENOMEM), IsLine(NoMemoryLine(kTooManyBytes)));
}

// There is never memory for it.
struct Unobtainable {
  static void* operator new(std::size_t, const std::nothrow_t&) noexcept { return nullptr; }
  static void operator delete(void*) {}
};

TEST(MemoryDeathTest, NewEndsTheProcessWithErrno) {
  EXPECT_EXIT(
      {
        errno = ENOMEM;
        kestan::New<Unobtainable>();
      },
      testing::ExitedWithCode(ENOMEM), testing::Eq(NoMemoryLine(sizeof(Unobtainable))));
}

// As many as a vector may ask for at all in 32 bits.
constexpr std::size_t kTooManyForAVector =
    sizeof(std::size_t) > 4 ? std::size_t{kTooManyBytes} : std::size_t{2147483647u};

TEST(MemoryDeathTest, ContainersEndTheProcessRatherThanThrow) {
  EXPECT_EXIT(
      {
        LimitMemory();
        kestan::Vector<char> bytes;
        bytes.reserve(kTooManyForAVector);
      },
      testing::ExitedWithCode(ENOMEM), IsLine(NoMemoryLine(kTooManyForAVector)));
}

TEST(MemoryDeathTest, TheExitStatusIsTheErrorThatTheLineNames) {
  const std::string reason = std::strerror(EAGAIN);
  EXPECT_EXIT(
      {
        errno = EAGAIN;
        kestan::EndForLackOfMemory(12);
      },
      testing::ExitedWithCode(EAGAIN),
      testing::Eq("Kestan: could not allocate 12 bytes -- " + reason + "\n"));
}

TEST(MemoryTest, AllocatorsAreAllTheSame) {
  EXPECT_TRUE(kestan::Allocator<int>() == kestan::Allocator<int>());
  EXPECT_FALSE(kestan::Allocator<int>() != kestan::Allocator<int>());
}

TEST(MemoryTest, StringsAndVectorsHoldWhatIsPutIn) {
  kestan::String text("abc");
  text.append(1000, 'x');
  EXPECT_EQ(text.size(), 1003u);
  const kestan::Vector<int> numbers = {1, 2, 3};
  EXPECT_EQ(numbers.back(), 3);
}

}  // namespace
}  // namespace kestan_tests
