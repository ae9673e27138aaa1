#include "cli/index/captured_stderr.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using kestan_cli::CapturedStderr;

TEST(CapturedStderrTest, LinesArePrintedLaterInTheirOrder) {
  const std::string printed = StandardErrorOf([] {
    {
      const CapturedStderr held;
      std::fputs("first\n", stderr);
      std::fputs("second\n", stderr);
    }
    std::fputs("third\n", stderr);
  });
  EXPECT_EQ(printed, "first\nsecond\nthird\n");
}

TEST(CapturedStderrTest, DroppedLinesAreNotPrinted) {
  const std::string printed = StandardErrorOf([] {
    {
      CapturedStderr held;
      std::fputs("lost\n", stderr);
      held.Drop();
    }
    std::fputs("kept\n", stderr);
  });
  EXPECT_EQ(printed, "kept\n");
}

TEST(CapturedStderrTest, ControlCharactersAreEscaped) {
  EXPECT_EQ(StandardErrorOf([] {
              const CapturedStderr held;
              std::fputs("\x1b[2J caf\xc3\xa9\n\x9b\n", stderr);
            }),
            "\\x1b[2J caf\xc3\xa9\n\\x9b\n");
}

TEST(CapturedStderrTest, LongLineIsPrintedWhole) {
  const std::string line(10000, 'x');
  EXPECT_EQ(StandardErrorOf([&] {
              const CapturedStderr held;
              std::fputs(line.c_str(), stderr);
            }),
            line);
}

TEST(CapturedStderrDeathTest, LinesArePrintedWhenTheProcessEnds) {
  EXPECT_EXIT(
      {
        const CapturedStderr held;
        std::fputs("the last words\n", stderr);
        std::exit(7);  // NOLINT(concurrency-mt-unsafe)
      },
      testing::ExitedWithCode(7), "the last words");
}

}  // namespace
}  // namespace kestan_tests
