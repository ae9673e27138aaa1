// SPDX-License-Identifier: GPL-3.0-or-later
// Runs shells on the completion that the command prints for them.
#ifndef KESTAN_TESTS_CLI_APP_COMPLETION_TEST_H_
#define KESTAN_TESTS_CLI_APP_COMPLETION_TEST_H_

#include <cstdlib>
#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {

// Returns whether the machine has the program `name`.
inline bool IsInstalled(const std::string& name) {
  const std::string command = "command -v " + name + " > /dev/null";
  return std::system(command.c_str()) == 0;  // NOLINT(cert-env33-c,concurrency-mt-unsafe)
}

class CompletionTest : public CommandTest {
 protected:
  // Writes the completion for `shell` into the file `completion`.
  void WriteCompletion(const std::string& shell) {
    Write("completion", Run({"completion", shell}).out);
  }

  // Runs `command` in the folder of the test and returns what it prints.
  std::string Shell(const std::string& command) {
    const std::string line = "cd '" + Path("") + "' && { " + command + "; } > printed";
    EXPECT_EQ(std::system(line.c_str()), 0);  // NOLINT(cert-env33-c,concurrency-mt-unsafe)
    return BytesOfFile(Path("printed"));
  }
};

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_CLI_APP_COMPLETION_TEST_H_
