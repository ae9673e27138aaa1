// SPDX-License-Identifier: GPL-3.0-or-later
// The case-folded form of a word is wherever the word is.
#include <kestan/maintenance/check/form_check.h>

#include <string>

#include "tests/maintenance/maintenance_test.h"

namespace kestan_tests {
namespace {

const char* const kFault =
    "Cat: the case-folded form is not where this is, first in the document of code ";

TEST(FormCheckTest, PostingsAndPositionsOfTheFoldedFormInOrder) {
  EXPECT_EQ(LinesOf(With({{"Cat", Units({1, 1, 1, 2, 1, 1})}})), Lines());
  EXPECT_EQ(LinesOf(With({{"Cat", Units({2, 1, 1})}})), Lines());
}

TEST(FormCheckTest, APostingThatTheFoldedFormLacks) {
  EXPECT_EQ(LinesOf(With({{"Cat", Units({2, 1, 1, 1, 1, 1})}})),
            Lines({kFault + std::string("1")}));
  EXPECT_EQ(
      LinesOf(With({{"Dog", Units({2, 1, 1})}})),
      Lines({"Dog: the case-folded form is not where this is, first in the document of code 2"}));
}

TEST(FormCheckTest, APositionThatTheFoldedFormLacks) {
  EXPECT_EQ(LinesOf(With({{"Cat", Units({1, 1, 2})}})), Lines({kFault + std::string("1")}));
  EXPECT_EQ(LinesOf(With({{"Cat", Units({1, 1, 1, 2, 2, 1, 1})}})),
            Lines({kFault + std::string("2"), "d-b: positions of a word do not ascend"}));
}

TEST(FormCheckTest, WithoutPositionsCodesAreCompared) {
  const Records records{{"g-opts", Units({1, 0})}, {"cat", Units({1, 2})}, {"dog", Units({1})}};
  Records changed = records;
  changed["Dog"] = Units({2});
  EXPECT_EQ(LinesOf(With(records)), Lines());
  EXPECT_EQ(
      LinesOf(With(changed)),
      Lines({"Dog: the case-folded form is not where this is, first in the document of code 2"}));
}

TEST(FormCheckTest, WordsThatNoShrinkPurgesAreLeftOut) {
  EXPECT_EQ(LinesOf(With({{"I", Units({1, 1, 2})}})), Lines());
}

}  // namespace
}  // namespace kestan_tests
