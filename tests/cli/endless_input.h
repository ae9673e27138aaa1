// SPDX-License-Identifier: GPL-3.0-or-later
// Commands whose standard input does not end.
#ifndef KESTAN_TESTS_CLI_ENDLESS_INPUT_H_
#define KESTAN_TESTS_CLI_ENDLESS_INPUT_H_

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstddef>
#include <string>
#include <vector>

#include "tests/cli/index_folder_test.h"

namespace kestan_tests {

constexpr std::size_t kMiB = std::size_t{1} << 20;

class EndlessInputTest : public IndexFolderTest {
 protected:
  // Runs a command whose standard input is `start` and then the letter x without end.
  //   Returns  how many bytes were written before the command ended; about `most` if it did not.
  std::size_t FeedEndlessly(const std::vector<std::string>& arguments, const std::string& start,
                            std::size_t most, Outcome* outcome) {
    std::signal(SIGPIPE, SIG_IGN);
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    const TempDir streams;
    const pid_t child = Start(arguments, streams, [&] { dup2(ends[0], STDIN_FILENO); });
    close(ends[0]);
    std::size_t bytes = 0;
    std::string piece = start;
    for (ssize_t written = 0; written >= 0 && bytes < most;) {
      written = write(ends[1], piece.data(), piece.size());
      if (written > 0) bytes += static_cast<std::size_t>(written);
      piece.assign(65536, 'x');
    }
    close(ends[1]);
    int status = 0;
    waitpid(child, &status, 0);
    *outcome = {WEXITSTATUS(status), BytesOfFile(streams / "out"), BytesOfFile(streams / "err")};
    return bytes;
  }
};

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_CLI_ENDLESS_INPUT_H_
