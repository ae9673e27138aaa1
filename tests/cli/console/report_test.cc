// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/report.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan_cli {
namespace {

std::string Printed(ReportFormat format) {
  testing::internal::CaptureStdout();
  PrintReport(
      format, [] { return std::string("json\n"); }, [] { return std::string("text\n"); });
  return testing::internal::GetCapturedStdout();
}

TEST(ReportTest, OneFormIsPrintedOrNone) {
  EXPECT_EQ(Printed(ReportFormat::kJson), "json\n");
  EXPECT_EQ(Printed(ReportFormat::kText), "text\n");
  EXPECT_EQ(Printed(ReportFormat::kNone), "");
}

TEST(ReportTest, OnlyTheFormThatIsPrintedIsMade) {
  bool made = false;
  const auto make = [&] {
    made = true;
    return std::string();
  };
  PrintReport(ReportFormat::kNone, make, make);
  EXPECT_FALSE(made);
}

TEST(ReportTest, JsonPrevailsOverQuiet) {
  EXPECT_EQ(ReportFormatOf(true, true), ReportFormat::kJson);
  EXPECT_EQ(ReportFormatOf(false, true), ReportFormat::kNone);
  EXPECT_EQ(ReportFormatOf(false, false), ReportFormat::kText);
}

}  // namespace
}  // namespace kestan_cli
