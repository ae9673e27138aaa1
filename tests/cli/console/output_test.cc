// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/output.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>

namespace kestan_tests {
namespace {

using kestan_cli::LinePrinter;
using kestan_cli::Print;

std::string Printed(const std::function<void()>& print) {
  testing::internal::CaptureStdout();
  print();
  return testing::internal::GetCapturedStdout();
}

TEST(OutputTest, ProgramsGetTheBytesThemselves) {
  EXPECT_EQ(Printed([] { Print(std::string("a\x1b[2J\0\xff\n", 8)); }),
            std::string("a\x1b[2J\0\xff\n", 8));
}

TEST(OutputTest, LinesArePrintedSomeAtATimeAndAllAtTheEnd) {
  const std::string line(40000, 'x');
  EXPECT_EQ(Printed([&] {
              LinePrinter printer;
              printer.Take(line);
              printer.Take(line);  // more than is held back
            }),
            line + "\n" + line + "\n");
  EXPECT_EQ(Printed([] { LinePrinter().Take("waits"); }), "");
  EXPECT_EQ(Printed([] {
              LinePrinter printer;
              printer.Take("waits");
              printer.Finish();
              printer.Finish();
            }),
            "waits\n");
}

// One file writes to each stream, and escapes what a terminal could obey.
TEST(OutputTest, NoOtherFileWritesToTheStandardStreams) {
  const std::set<std::string> may_write = {"output.cc", "diagnostics.cc"};
  const std::regex writes(
      "\\b(stdout|stderr)\\b|std::(cout|cerr|clog|puts|printf|putchar)\\b|perror");
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

}  // namespace
}  // namespace kestan_tests
