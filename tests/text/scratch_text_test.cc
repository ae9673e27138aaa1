// SPDX-License-Identifier: GPL-3.0-or-later
// The scratch buffer: the size that it states and the memory that it has.
#include <kestan/text/scratch_text.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

namespace kestan_tests {
namespace {

class ScratchTextTest : public testing::Test {
 protected:
  ~ScratchTextTest() override { scratch.Release(); }

  kestan::ScratchBuffer scratch;
};

TEST_F(ScratchTextTest, StartsEmpty) {
  EXPECT_EQ(scratch.bytes, nullptr);
  EXPECT_EQ(scratch.size, 0u);
  EXPECT_EQ(scratch.capacity, 0u);
}

TEST_F(ScratchTextTest, GrowingStatesTheSizeAndHasTheMemory) {
  scratch.Grow(5000);
  EXPECT_EQ(scratch.size, 5000u);
  std::memset(scratch.bytes, 'x', 5000);
}

TEST_F(ScratchTextTest, TheStatedSizeMayGoDownToZero) {
  scratch.Grow(4096);
  scratch.bytes[0] = 'x';
  scratch.Grow(0);
  EXPECT_EQ(scratch.size, 0u);
  EXPECT_EQ(scratch.bytes[0], 'x');
}

TEST_F(ScratchTextTest, ASizeOfZeroHasAnAddressAllTheSame) {
  scratch.Grow(0);
  EXPECT_NE(scratch.bytes, nullptr);
}

TEST_F(ScratchTextTest, ReservingLeavesTheStatedSize) {
  scratch.Grow(10);
  scratch.Reserve(100000);
  EXPECT_EQ(scratch.size, 10u);
  std::memset(scratch.bytes, 'x', 100000);
}

TEST_F(ScratchTextTest, GrowingKeepsTheBytes) {
  scratch.Grow(4);
  std::memcpy(scratch.bytes, "word", 4);
  scratch.Grow(1000000);
  EXPECT_EQ(std::string(scratch.bytes, 4), "word");
}

TEST_F(ScratchTextTest, ReservingWhatIsThereMovesNothing) {
  scratch.Grow(1000);
  const char* const before = scratch.bytes;
  scratch.Reserve(1000);
  scratch.Reserve(1);
  EXPECT_EQ(scratch.bytes, before);
}

TEST_F(ScratchTextTest, ReleasingLeavesAddressAndSize) {
  scratch.Grow(100);
  const auto before = reinterpret_cast<std::uintptr_t>(scratch.bytes);
  scratch.Release();
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(scratch.bytes), before);
  EXPECT_EQ(scratch.size, 100u);
  scratch.Release();
}

TEST_F(ScratchTextTest, AfterReleasingItAllocatesAllThatItStates) {
  scratch.Grow(100);
  scratch.Release();
  scratch.Reserve(1);
  std::memset(scratch.bytes, 'x', 100);
}

TEST_F(ScratchTextTest, ATextStatesAtLeast4096Bytes) {
  kestan::ScratchText text(&scratch);
  EXPECT_EQ(scratch.size, 4096u);
  EXPECT_STREQ(text.Finish(), "");
}

TEST_F(ScratchTextTest, ATextLeavesALargerSize) {
  scratch.Grow(5000);
  kestan::ScratchText text(&scratch);
  EXPECT_EQ(scratch.size, 5000u);
}

TEST_F(ScratchTextTest, ATextIsWhatWasAppended) {
  kestan::ScratchText text(&scratch);
  text.Append("one");
  text.Append("");
  text.AppendLine(" two", 6);
  EXPECT_STREQ(text.Finish(), "one two\n");
  EXPECT_EQ(kestan::ScratchText(&scratch).Finish(), scratch.bytes);
}

TEST_F(ScratchTextTest, MakingRoomThatIsLeftChangesNothing) {
  kestan::ScratchText text(&scratch);
  text.Append(std::string(4000, 'x'));
  text.MakeRoom(96);
  EXPECT_EQ(scratch.size, 4096u);
}

TEST_F(ScratchTextTest, MakingRoomForOneByteMoreDoublesTheSize) {
  kestan::ScratchText text(&scratch);
  text.Append(std::string(4000, 'x'));
  text.MakeRoom(97);
  EXPECT_EQ(scratch.size, 8192u);
}

TEST_F(ScratchTextTest, MakingRoomDoublesTheSizeOnlyOnce) {
  kestan::ScratchText text(&scratch);
  text.MakeRoom(100000);
  EXPECT_EQ(scratch.size, 8192u);
  text.Append(std::string(100000, 'x'));
  EXPECT_EQ(std::string(text.Finish()).size(), 100000u);
}

TEST_F(ScratchTextTest, ATextPastTheStatedSizeStillAsksForMore) {
  kestan::ScratchText text(&scratch);
  text.Append(std::string(5000, 'x'));
  EXPECT_EQ(scratch.size, 4096u);
  text.MakeRoom(0);
  EXPECT_EQ(scratch.size, 8192u);
}

TEST_F(ScratchTextTest, ATextOfManyLinesIsWhole) {
  kestan::ScratchText text(&scratch);
  std::string expected;
  for (int i = 0; i < 5000; ++i) {
    const std::string line = "line " + std::to_string(i);
    text.AppendLine(line, line.size() + 2);
    expected += line + "\n";
  }
  EXPECT_EQ(text.Finish(), expected);
}

}  // namespace
}  // namespace kestan_tests
