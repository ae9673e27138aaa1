// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <string>

#include "tests/cli/app/completion/completion_test.h"

namespace kestan_tests {
namespace {

class BashCompletionTest : public CompletionTest {
 protected:
  // Has bash complete the last of `count` words, and returns what it offers.
  std::string Offers(const std::string& words, int count) {
    WriteCompletion("bash");
    Write("try", ". ./completion; COMP_WORDS=(" + words + "); COMP_CWORD=" +
                     std::to_string(count - 1) + "; _kestan; echo \"${COMPREPLY[@]}\"");
    return Shell("bash try");
  }
};

TEST_F(BashCompletionTest, OffersCommands) {
  EXPECT_EQ(Offers("kestan se", 2), "search\n");
  EXPECT_EQ(Offers("kestan ''", 2).substr(0, 12), "index search");
}

TEST_F(BashCompletionTest, OffersCommandsOfAGroup) {
  EXPECT_EQ(Offers("kestan title ''", 3), "get set delete\n");
}

TEST_F(BashCompletionTest, OffersOptionsOnlyAfterADash) {
  EXPECT_EQ(Offers("kestan compact --dr", 3), "--dry-run\n");
  EXPECT_EQ(Offers("kestan shrink --dr", 3), "--dry-run\n");  // its other name
  EXPECT_EQ(Offers("kestan option get my.index --js", 5), "--json\n");
  EXPECT_EQ(Offers("kestan compact ''", 3), "\n");
}

TEST_F(BashCompletionTest, OffersTheValuesOfAnOption) {
  EXPECT_EQ(Offers("kestan search --order ''", 4), "best name\n");
  EXPECT_EQ(Offers("kestan search --color a", 4), "auto always\n");
}

TEST_F(BashCompletionTest, OffersFiltersWhereAQueryMayStand) {
  EXPECT_EQ(Offers("kestan search my.index t", 4), "type: title:\n");
  EXPECT_EQ(Offers("kestan search my.index cat bef", 5), "before:\n");
  EXPECT_EQ(Offers("kestan search my.index ''", 4), "\n");
  EXPECT_EQ(Offers("kestan search t", 3), "\n");     // the index
  EXPECT_EQ(Offers("kestan search -i t", 4), "\n");  // the value of an option
  EXPECT_EQ(Offers("kestan list my.index t", 4), "\n");
}

}  // namespace
}  // namespace kestan_tests
