// SPDX-License-Identifier: GPL-3.0-or-later
// What `kestan index` shows on a terminal at its end.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

// A terminal of 70 columns, on which the command prints.
class IndexTerminalTest : public CommandTest {
 protected:
  void SetUp() override {
    terminal_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_TRUE(terminal_ >= 0 && grantpt(terminal_) == 0 && unlockpt(terminal_) == 0);
    const winsize size{24, 70, 0, 0};
    ASSERT_EQ(ioctl(terminal_, TIOCSWINSZ, &size), 0);
    Write("d/a", "cat\n");
    for (int i = 10; i < 22; ++i) Write("d/" + std::to_string(i) + "\n", "cat\n");
  }
  void TearDown() override { close(terminal_); }

  // Returns what the terminal gets of the output `stream`.
  std::string Shown(int stream) {
    const std::string line = ptsname(terminal_);
    const int held = open(line.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    Run({"index", "my.index", "d"}, [&] {
      setenv("TERM", "xterm", 1);
      dup2(open(line.c_str(), O_RDWR | O_NOCTTY), stream);
    });
    close(held);
    std::string text;
    std::array<char, 4096> piece{};
    for (ssize_t bytes = 0; (bytes = read(terminal_, piece.data(), piece.size())) > 0;) {
      text.append(piece.data(), static_cast<std::size_t>(bytes));
    }
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
  }

 private:
  int terminal_ = -1;
};

TEST_F(IndexTerminalTest, LinesOfTheReportFit) {
  EXPECT_EQ(Shown(STDOUT_FILENO),
            "added 1, updated 0, moved 0, removed 0, unchanged 0, skipped 12 (12\n"
            "    unusable names), 1 document in 1 segment\n"
            "  12 unusable names: rename them, without line feeds\n");
}

TEST_F(IndexTerminalTest, TenFailuresAreNamed) {
  const std::string shown = Shown(STDERR_FILENO);
  EXPECT_NE(shown.find("skipped 'd/19\\n': its name holds a line feed\n"
                       "kestan: 2 more like these; --why names them all\n"),
            std::string::npos)
      << shown;
  EXPECT_EQ(shown.find("d/20"), std::string::npos) << shown;
}

TEST_F(IndexTerminalTest, ProgramsGetThemAll) {
  EXPECT_NE(Run({"index", "my.index", "d"}).err.find("skipped 'd/21\\n'"), std::string::npos);
}

}  // namespace
}  // namespace kestan_tests
