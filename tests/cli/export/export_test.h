// SPDX-License-Identifier: GPL-3.0-or-later
// Running an export within the test and looking at all that it prints.
#ifndef KESTAN_TESTS_CLI_EXPORT_EXPORT_TEST_H_
#define KESTAN_TESTS_CLI_EXPORT_EXPORT_TEST_H_

#include <gtest/gtest.h>

#include <string>

#include "cli/commands/documents/export_command.h"
#include "tests/support/index_test.h"

namespace kestan_tests {

struct Exported {
  std::string out;
  std::string err;
};

inline Exported Export(const std::string& index, const kestan_cli::ExportOptions& options) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  EXPECT_EQ(kestan_cli::RunExport(index, options), 0);
  Exported exported;
  exported.err = testing::internal::GetCapturedStderr();
  exported.out = testing::internal::GetCapturedStdout();
  return exported;
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_CLI_EXPORT_EXPORT_TEST_H_
