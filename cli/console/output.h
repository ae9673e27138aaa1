// SPDX-License-Identifier: GPL-3.0-or-later
// The standard output of the command.
#ifndef KESTAN_CLI_CONSOLE_OUTPUT_H_
#define KESTAN_CLI_CONSOLE_OUTPUT_H_

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

namespace kestan_cli {

// Whoever read the standard output has closed it. Ends the command with status kDone and without a
// message: who has seen enough of a list is not told that anything is wrong.
class BrokenPipe : public std::exception {};

// All output goes through the functions here: most of it comes from files, and no file may control
// a terminal.

// Writes `text` to the standard output and flushes it. A program that reads it gets these bytes, a
// terminal gets Readable(text).
//   Throws   CommandError if it cannot be written, BrokenPipe on a closed pipe.
void Print(std::string_view text);

// The same, but a terminal gets these bytes too: `text` holds terminal controls, such as colours,
// and what came from files is escaped in it.
void PrintPainted(std::string_view text);

// Prints `text` as Print does, unless the pipe is closed: for reports on work that goes on without
// a reader, and whose exit status stands.
void PrintIfRead(std::string_view text);

bool OutputIsTerminal();

// Prints many lines, several at a time.
class LinePrinter {
 public:
  using Printer = void (*)(std::string_view text);

  // Prints with `print`: Print, or PrintIfRead.
  explicit LinePrinter(Printer print = Print) : print_(print) {}

  // Adds `line` and a line feed. Throws as the printer does.
  void Take(std::string_view line) {
    waiting_.append(line) += '\n';
    if (waiting_.size() >= kBytesAtATime) Finish();
  }

  // Prints the lines that wait.
  void Finish() {
    print_(waiting_);
    waiting_.clear();
  }

 private:
  static constexpr std::size_t kBytesAtATime = std::size_t{1} << 16;

  const Printer print_;
  std::string waiting_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_OUTPUT_H_
