// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/memory/diagnostics.h>

#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using kestan::PrintDiagnostic;

TEST(PrintDiagnosticTest, NamesTheEngineAndFillsInValues) {
  EXPECT_EQ(StandardErrorOf([] { PrintDiagnostic("%s and %d%%\n", "a word", 7); }),
            "Kestan: a word and 7%\n");
}

TEST(PrintDiagnosticTest, AddsNoLineFeed) {
  EXPECT_EQ(StandardErrorOf([] { PrintDiagnostic("half"); }), "Kestan: half");
}

TEST(PrintDiagnosticTest, ValuesHaveAnyLength) {
  const std::string name(100000, 'x');
  EXPECT_EQ(StandardErrorOf([&] { PrintDiagnostic("'%s'\n", name.c_str()); }),
            "Kestan: '" + name + "'\n");
}

TEST(PrintDiagnosticTest, FormatOf200BytesIsWhole) {
  const std::string printed = StandardErrorOf([] {
    PrintDiagnostic(
        "%s23456789012345678901234567890123456789012345678901234567890123456789012345678901"
        "234567890123456789012345678901234567890123456789012345678901234567890123456789012"
        "3456789012345678901234567890123456789",
        "1");
  });
  EXPECT_EQ(printed.size(), 8u + 199u);
  EXPECT_EQ(printed.substr(0, 10), "Kestan: 12");
  EXPECT_EQ(printed.back(), '9');
}

}  // namespace
}  // namespace kestan_tests
