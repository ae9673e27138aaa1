// SPDX-License-Identifier: GPL-3.0-or-later
// The bounds of CommonWords where the processor multiplies and adds in one step. This program has
// kestan/query/collection_lists.cc compiled for such a processor, with the options of the library.
#include <cmath>

#include "tests/indexing/planting.h"

namespace kestan_tests {
namespace {

bool IsProcessorFusing() {
#if defined(__x86_64__) || defined(__i386__)
  return __builtin_cpu_supports("fma") != 0;
#else
  return true;
#endif
}

class FusedArithmeticTest : public IndexTest {
 protected:
  void SetUp() override {
    if (!IsProcessorFusing()) GTEST_SKIP() << "the processor cannot run it";
    IndexTest::SetUp();
  }

  // Lists the words of an index of `documents` documents that are in at least, and at most, this
  // share of them. One word is in one document, another in none.
  std::string WordsOfShare(unsigned documents, double share) {
    PlantAndReopen({{"g-code", Units({documents})}, {"one", EncodedPosting(1, {1})}, {"none", ""}});
    return engine_.CommonWords(share, share);
  }
};

// The product is a little less than a half. It becomes that in the sum, when it was rounded itself.
TEST_F(FusedArithmeticTest, RoundsTheShareBeforeItAddsAHalf) {
  EXPECT_LT(std::fma(11, 0.045454545454545449, 0.5), 1.0);
  EXPECT_EQ(WordsOfShare(11, 0.045454545454545449), "one\n");
  EXPECT_LT(std::fma(45, 0.01111111111111111, 0.5), 1.0);
  EXPECT_EQ(WordsOfShare(45, 0.01111111111111111), "one\n");
}

}  // namespace
}  // namespace kestan_tests
