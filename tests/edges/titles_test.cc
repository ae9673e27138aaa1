// SPDX-License-Identifier: GPL-3.0-or-later
// Titles around multiples of 4096 bytes, read into scratch buffers that are smaller, just as large,
// and larger.
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

class TitleOfLengthTest : public IndexTest, public testing::WithParamInterface<std::uint32_t> {
 protected:
  void SetUp() override {
    IndexTest::SetUp();
    engine_.DBPutTitle("name", title_.c_str());
  }

  // Reads the title into a buffer of the stated size 0, or of just `stated` bytes, and returns the
  // size afterwards. A list of words states 4096 bytes more than it has where the size is less.
  std::uint32_t ReadInto(std::uint32_t stated) {
    StateNothing();
    if (stated != 0) engine_.DBPutWords("list", std::string(stated - 4096, 'x').c_str());
    EXPECT_EQ(Kestan::WBSize, stated);
    EXPECT_EQ(engine_.DBGetTitle("name"), title_);
    EXPECT_EQ(Kestan::WordBuf[title_.size()], '\0');
    return Kestan::WBSize;
  }

  // What a text that does not fit makes of the size: one bit of its length plus 4096.
  std::uint32_t Regrown() const { return GetParam() / 4096 % 2 == 0 ? 4096 : 0; }

  const std::string title_ = std::string(GetParam(), 't');

 private:
  // A text of an odd number of times 4096 bytes that is longer than the size makes it 0.
  void StateNothing() {
    engine_.DBPutTitle("long", std::string(245 * 4096, 'l').c_str());
    engine_.DBGetTitle("long");
    EXPECT_EQ(Kestan::WBSize, 0U);
  }
};

INSTANTIATE_TEST_SUITE_P(Bytes, TitleOfLengthTest,
                         testing::Values(1, 4094, 4095, 4096, 4097, 4098, 8190, 8191, 8192, 8193,
                                         8194, 12286, 12287, 12288, 12289, 12290));

TEST_P(TitleOfLengthTest, ComesBackWholeFromABufferThatWasNothing) {
  EXPECT_EQ(ReadInto(0), Regrown());
}

TEST_P(TitleOfLengthTest, ComesBackWholeFromALargerBuffer) {
  EXPECT_EQ(ReadInto(GetParam() + 4097), GetParam() + 4097);
}

TEST_P(TitleOfLengthTest, ComesBackWholeTwice) {
  const std::uint32_t once = ReadInto(0);
  EXPECT_EQ(engine_.DBGetTitle("name"), title_);
  EXPECT_EQ(Kestan::WBSize, GetParam() > once ? Regrown() : once);
}

// A host cannot ask for a size between 0 and 4097 that is not 4096.
class LongTitleOfLengthTest : public TitleOfLengthTest {};

INSTANTIATE_TEST_SUITE_P(Bytes, LongTitleOfLengthTest,
                         testing::Values(4098, 8190, 8191, 8192, 8193, 8194, 12286, 12287, 12288,
                                         12289, 12290));

TEST_P(LongTitleOfLengthTest, ComesBackWholeFromASmallerBuffer) {
  EXPECT_EQ(ReadInto(GetParam() - 1), Regrown());
}

TEST_P(LongTitleOfLengthTest, ComesBackWholeFromABufferOfJustItsLength) {
  EXPECT_EQ(ReadInto(GetParam()), GetParam());
}

}  // namespace
}  // namespace kestan_tests
