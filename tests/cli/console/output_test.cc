#include "cli/console/output.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>

#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using kestan_cli::CapturedStderr;

TEST(CapturedStderrTest, ComeOutLaterAndInTheirOrder) {
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

TEST(CapturedStderrTest, AreGoneWhenDropped) {
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

TEST(CapturedStderrTest, CannotSteerATerminal) {
  EXPECT_EQ(StandardErrorOf([] {
              const CapturedStderr held;
              std::fputs("\x1b[2J caf\xc3\xa9\n\x9b\n", stderr);
            }),
            "\\x1b[2J caf\xc3\xa9\n\\x9b\n");
}

TEST(CapturedStderrTest, MayBeLongerThanAPiece) {
  const std::string line(10000, 'x');
  EXPECT_EQ(StandardErrorOf([&] {
              const CapturedStderr held;
              std::fputs(line.c_str(), stderr);
            }),
            line);
}

// Whatever is printed comes from a file some day.
TEST(OutputTest, NothingElseWritesToTheStandardStreams) {
  const std::set<std::string> may_write = {"output.cc", "progress.cc"};
  const std::regex writes("stdout|stderr|std::(cout|cerr|clog|puts|printf|putchar)\\b|perror");
  for (const std::string folder : {"cli", "search"}) {
    const std::string root = KESTAN_SOURCE_DIR "/" + folder;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
      const std::string name = entry.path().filename();
      if (may_write.count(name) != 0 || !entry.is_regular_file()) continue;
      std::ifstream source(entry.path());
      for (std::string line; std::getline(source, line);) {
        EXPECT_FALSE(std::regex_search(line, writes)) << name << ": " << line;
      }
    }
  }
}

// The engine ends the process when memory runs out, wherever that is.
TEST(CapturedStderrDeathTest, ComeOutWhenTheProcessEnds) {
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
