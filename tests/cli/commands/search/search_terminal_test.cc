// SPDX-License-Identifier: GPL-3.0-or-later
// What a search shows on a terminal.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "cli/console/columns.h"
#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

// A terminal of 80 columns on which the command prints. The clock of its user is that of UTC.
class SearchTerminalTest : public CommandTest {
 protected:
  void SetUp() override {
    terminal_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_TRUE(terminal_ >= 0 && grantpt(terminal_) == 0 && unlockpt(terminal_) == 0);
    SetColumns(80);
    AddOf2020("a", "A cat and a cat\nand a dog.\n");
  }
  void TearDown() override { close(terminal_); }

  void SetColumns(unsigned short columns) const {
    const winsize size{24, columns, 0, 0};
    ASSERT_EQ(ioctl(terminal_, TIOCSWINSZ, &size), 0);
  }

  // Adds a text of 20 February 2020, 23:30 UTC.
  void AddOf2020(const std::string& name, const std::string& text) {
    Write(name, text);
    const timespec time{1582241400, 0};
    const std::array<timespec, 2> times{time, time};
    ASSERT_EQ(utimensat(AT_FDCWD, Path(name).c_str(), times.data(), 0), 0);
    ASSERT_EQ(Run({"index", "my.index", name}).status, 0);
  }

  // Returns what the terminal gets, with N for the milliseconds.
  std::string Shown(std::vector<std::string> arguments, const char* no_color = "1",
                    const char* zone = "UTC") {
    arguments.insert(arguments.begin(), {"search", "my.index"});
    const std::string line = ptsname(terminal_);
    const int held = open(line.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    Run(arguments, [&] {
      setenv("TERM", "xterm", 1);
      setenv("NO_COLOR", no_color, 1);
      setenv("TZ", zone, 1);
      dup2(open(line.c_str(), O_RDWR | O_NOCTTY), STDOUT_FILENO);
    });
    close(held);
    return Gathered();
  }

 private:
  // The system passes a terminal's text on in pieces, some of them after the command has ended.
  // With the last descriptor of the other side closed, the read after the last piece fails.
  std::string Gathered() const {
    std::string text;
    std::array<char, 4096> piece{};
    for (ssize_t bytes = 0; (bytes = read(terminal_, piece.data(), piece.size())) > 0;) {
      text.append(piece.data(), static_cast<std::size_t>(bytes));
    }
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return std::regex_replace(text, std::regex(" in [0-9,]+ ms"), " in N ms");
  }

  int terminal_ = -1;
};

std::vector<std::string> LinesOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

TEST_F(SearchTerminalTest, TerminalsGetDatesTitlesTotalAndColour) {
  EXPECT_EQ(Shown({"dog"}, ""),
            "\x1b[2m100\x1b[0m \x1b[36ma\x1b[0m\n"
            "    \x1b[2m2020-02-20\x1b[0m  A cat and a cat\n"
            "    A cat and a cat and a \x1b[1;31mdog\x1b[0m.\n"
            "\x1b[2m1 of 1 in N ms\x1b[0m\n");
}

TEST_F(SearchTerminalTest, NoColorIsHonoured) {
  const std::string plain =
      "100 a\n    2020-02-20  A cat and a cat\n    A cat and a cat and a [dog].\n1 of 1 in N ms\n";
  EXPECT_EQ(Shown({"dog"}), plain);
  EXPECT_EQ(Shown({"--color", "never", "dog"}, ""), plain);
}

TEST_F(SearchTerminalTest, DateIsThatOfTheUsersClock) {
  EXPECT_NE(Shown({"dog"}, "1", "EAST-9").find("2020-02-21  A cat"), std::string::npos);
}

TEST_F(SearchTerminalTest, MessageHasItsOwnDateAndItsSender) {
  AddOf2020("m.eml",
            "From: Ann Other <ann@example.org>\nDate: 15 Mar 2024 12:00:00 +0000\n"
            "Subject: The cow\n\nIt moos.\n");
  EXPECT_EQ(Shown({"moos"}).substr(0, 52),
            "100 m.eml\n    2024-03-15  Ann Other  The cow\n    The");
}

TEST_F(SearchTerminalTest, BestTenAreShownUnlessAskedForMore) {
  for (char name = 'b'; name <= 'n'; ++name) AddOf2020(std::string(1, name), "A cow\n");
  const auto last = [this](const std::vector<std::string>& arguments) {
    const auto lines = LinesOf(Shown(arguments));
    return std::to_string(lines.size()) + ": " + lines.back();
  };
  EXPECT_EQ(last({"cow"}), "31: 10 of 13 in N ms");
  EXPECT_EQ(last({"--order", "name", "cow"}), "31: 10 of 13 in N ms");
  EXPECT_EQ(last({"--limit", "12", "cow"}), "37: 12 of 13 in N ms");
  EXPECT_EQ(last({"--limit", "0", "cow"}), "40: 13 of 13 in N ms");
}

TEST_F(SearchTerminalTest, NamesAloneAndCountsAreAsInAPipe) {
  for (char name = 'b'; name <= 'n'; ++name) AddOf2020(std::string(1, name), "A cow\n");
  EXPECT_EQ(Shown({"-l", "cow"}), "b\nc\nd\ne\nf\ng\nh\ni\nj\nk\nl\nm\nn\n");
  EXPECT_EQ(Shown({"--count", "cow"}), "13\n");
  const auto json = nlohmann::json::parse(Shown({"--json", "cow"}));
  EXPECT_EQ(json["hits"].size(), 13u);
}

TEST_F(SearchTerminalTest, ATerminalIsToldThatNothingWasFound) {
  EXPECT_EQ(Shown({"cow"}), "nothing found in N ms\n");
  EXPECT_EQ(Shown({"-l", "cow"}), "");
}

TEST_F(SearchTerminalTest, HitWithoutAFileHasNoDate) {
  ASSERT_EQ(Run({"user", "delete", "my.index", "a"}).status, 0);
  EXPECT_EQ(Shown({"dog"}), "100 a\n    A cat and a cat\n1 of 1 in N ms\n");
}

TEST_F(SearchTerminalTest, NoLineIsLongerThanTheTerminal) {
  std::string title;
  for (int i = 0; i < 40; ++i) title += "\xe5\x8c\x97\xe4\xba\xac e\xcc\x81 \xf0\x9f\x98\x80 ";
  AddOf2020("folder/of a long name that says nothing/" + title.substr(0, 200) + "x",
            title + "\ncow");
  for (const unsigned short columns : std::array<unsigned short, 5>{20, 21, 40, 80, 300}) {
    SetColumns(columns);
    const auto lines = LinesOf(Shown({"cow"}));
    ASSERT_GE(lines.size(), 4u) << columns;
    for (const std::string& line : lines) EXPECT_LE(kestan_cli::ColumnsOf(line), columns) << line;
  }
}

TEST_F(SearchTerminalTest, LongNamesShowTheirEnd) {
  AddOf2020("the/way/to/a/file/that/is/deep/down", "cow\n");
  SetColumns(24);
  EXPECT_EQ(LinesOf(Shown({"cow"}))[0], "100 ...that/is/deep/down");
}

}  // namespace
}  // namespace kestan_tests
