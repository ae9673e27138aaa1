// What the command does for any of its streams that is a terminal.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class ScreenTest : public CommandTest {
 protected:
  // Runs the command with `stream` at a terminal. Returns what that got, without the carriage
  // returns at the end of lines.
  std::string Shown(int stream, const std::vector<std::string>& arguments) {
    const int screen = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_EQ(grantpt(screen), 0);
    EXPECT_EQ(unlockpt(screen), 0);
    const int line = open(ptsname(screen), O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_GE(line, 0);
    Run(arguments, [&] { dup2(line, stream); });
    close(line);
    std::string shown;
    std::array<char, 4096> bytes{};
    ssize_t count = 0;
    while ((count = read(screen, bytes.data(), bytes.size())) > 0) {
      shown.append(bytes.data(), static_cast<std::size_t>(count));
    }
    close(screen);
    for (std::size_t at = 0; (at = shown.find("\r\n", at)) != std::string::npos;)
      shown.erase(at, 1);
    return shown;
  }
};

TEST_F(ScreenTest, NamesCannotSteerIt) {
  Add("a\x1b[2J", "cat\n");
  EXPECT_EQ(Shown(STDOUT_FILENO, {"list", "my.index"}), "a\\x1b[2J\n");
  EXPECT_EQ(Shown(STDOUT_FILENO, {"search", "-l", "my.index", "cat"}), "a\\x1b[2J\n");
  EXPECT_EQ(Run({"list", "my.index"}), Success("a\x1b[2J\n"));
}

TEST_F(ScreenTest, IndexingShowsABarUnlessItIsToBeQuiet) {
  Write("slow", "#!/bin/sh\nsleep 0.3\necho text\n");
  ASSERT_EQ(chmod(Path("slow").c_str(), 0700), 0);
  for (const char* name : {"d/a.zz", "d/b.zz"}) Write(name, std::string("a\0b", 3));
  const std::vector<std::string> index{"index", "my.index",    "d",
                                       "--all", "--converter", "zz=" + Path("slow") + " {}"};
  const std::string shown = Shown(STDERR_FILENO, index);
  EXPECT_EQ(shown.substr(0, 3), "\r[#") << shown;
  EXPECT_NE(shown.find("1/2 files"), std::string::npos) << shown;
  std::vector<std::string> quiet = index;
  quiet.emplace_back("-q");
  EXPECT_EQ(Shown(STDERR_FILENO, quiet), "");
}

}  // namespace
}  // namespace kestan_tests
