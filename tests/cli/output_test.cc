#include "cli/output.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using kestan_cli::HeldErrors;

TEST(HeldErrorsTest, ComeOutLaterAndInTheirOrder) {
  const std::string printed = StandardErrorOf([] {
    {
      const HeldErrors held;
      std::fputs("first\n", stderr);
      std::fputs("second\n", stderr);
    }
    std::fputs("third\n", stderr);
  });
  EXPECT_EQ(printed, "first\nsecond\nthird\n");
}

TEST(HeldErrorsTest, AreGoneWhenDropped) {
  const std::string printed = StandardErrorOf([] {
    {
      HeldErrors held;
      std::fputs("lost\n", stderr);
      held.Drop();
    }
    std::fputs("kept\n", stderr);
  });
  EXPECT_EQ(printed, "kept\n");
}

TEST(HeldErrorsTest, MayBeLongerThanAPiece) {
  const std::string line(10000, 'x');
  EXPECT_EQ(StandardErrorOf([&] {
              const HeldErrors held;
              std::fputs(line.c_str(), stderr);
            }),
            line);
}

// The engine ends the process when memory runs out, wherever that is.
TEST(HeldErrorsDeathTest, ComeOutWhenTheProcessEnds) {
  EXPECT_EXIT(
      {
        const HeldErrors held;
        std::fputs("the last words\n", stderr);
        std::exit(7);  // NOLINT(concurrency-mt-unsafe)
      },
      testing::ExitedWithCode(7), "the last words");
}

}  // namespace
}  // namespace kestan_tests
