// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/text/fold.h>

#include <gtest/gtest.h>

namespace kestan {
namespace {

TEST(FoldTest, CapitalLettersBecomeLowerCase) {
  EXPECT_EQ(Folded("Cat AZ"), "cat az");
  EXPECT_EQ(Folded(""), "");
}

TEST(FoldTest, EveryByteGetsBitFive) {
  for (int number = 0; number < 256; ++number) {
    const char byte = static_cast<char>(number);
    const String folded = Folded({&byte, 1});
    ASSERT_EQ(folded.size(), 1U);
    EXPECT_EQ(static_cast<unsigned char>(folded[0]), number | 0x20) << number;
    EXPECT_EQ(IsFolded(byte), (number & 0x20) != 0) << number;
  }
}

TEST(FoldTest, WordIsFoldedIfEachByteIs) {
  EXPECT_TRUE(IsFolded(std::string_view()));
  EXPECT_TRUE(IsFolded("cat1-\xe9"));
  EXPECT_FALSE(IsFolded("Cat"));
  EXPECT_FALSE(IsFolded("caf\xc3\xa9"));
}

}  // namespace
}  // namespace kestan
