// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <string>

#include "tests/cli/app/completion/completion_test.h"

namespace kestan_tests {
namespace {

using FishCompletionTest = CompletionTest;

TEST_F(FishCompletionTest, OffersWhatMayFollow) {
  if (!IsInstalled("fish")) GTEST_SKIP() << "there is no fish";
  WriteCompletion("fish");
  Write("try",
        "source completion; for line in 'kestan se' 'kestan title ' 'kestan title get --j'"
        " 'kestan search --order b' 'kestan search my.index ty'\ncomplete -C $line | string split "
        "-f 1 \\t\nend");
  EXPECT_EQ(Shell("HOME=. fish --no-config try 2>&1"),
            "search\ndelete\nget\nset\n--json\nbest\ntype:\n");
}

}  // namespace
}  // namespace kestan_tests
