// The standard streams of the command.
#ifndef KESTAN_CLI_CONSOLE_OUTPUT_H_
#define KESTAN_CLI_CONSOLE_OUTPUT_H_

#include <array>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "cli/files/descriptor.h"

namespace kestan_cli {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using OpenFile = std::unique_ptr<std::FILE, CloseFile>;

// Whoever read the standard output has closed it and wants no more. Ends the command with status 2
// and without a word: nothing is wrong.
class BrokenPipe : public std::exception {};

// Everything that is printed goes through the functions here, for most of it came from files, which
// are not to steer a terminal.

// Writes `text` to the standard output and makes sure that it has left. A program that reads it
// gets the very bytes, a terminal what Readable() makes of them.
//   Throws   CommandError if it cannot be written, BrokenPipe on a closed pipe.
void Print(std::string_view text);

// The same, but a terminal gets the very bytes too: `text` has orders for it, such as colours, and
// what came from files is spelled out in it.
void PrintPainted(std::string_view text);

bool OutputIsTerminal();

// Writes `line`, with controls spelled out, and a line feed to the standard error stream.
void Say(std::string_view line);

// Prints many lines, some at a time.
class LinePrinter {
 public:
  // Adds a line feed. Throws as Print does.
  void Take(std::string_view line) {
    waiting_.append(line) += '\n';
    if (waiting_.size() >= kBytesAtATime) Finish();
  }

  // Prints what waits.
  void Finish() {
    Print(waiting_);
    waiting_.clear();
  }

 private:
  static constexpr std::size_t kBytesAtATime = std::size_t{1} << 16;

  std::string waiting_;
};

// Reads `stream`, which is the standard input, to its end.
//   Throws   CommandError if it cannot be read, or holds more than `max_bytes`.
std::string ReadInput(std::FILE* stream, std::size_t max_bytes);

// Holds back what the process writes to the standard error stream from here on. The engine has a
// line for each record that a full disk refuses, where one line says it all, and puts keys in them
// as they are. One at a time.
class CapturedStderr {
 public:
  CapturedStderr();
  ~CapturedStderr();  // lets it out, spelled out, unless it was dropped; so does the process's end
  CapturedStderr(const CapturedStderr&) = delete;
  CapturedStderr& operator=(const CapturedStderr&) = delete;

  void Drop() { dropped_ = true; }

 private:
  static void LetOutAtExit();
  void LetOut();

  static CapturedStderr* current_;
  bool dropped_ = false;
  Descriptor stream_;  // the standard error stream itself, meanwhile
  Descriptor held_;
};

// Keeps the three standard descriptors taken, for a caller may start the command with some closed.
// The index file would be opened in their place, and what is printed would be written into it.
class StandardDescriptors {
 public:
  StandardDescriptors();

 private:
  std::array<OpenFile, 3> placeholders_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_OUTPUT_H_
