// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/output.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "cli/console/message.h"

namespace kestan_cli {

void Print(std::string_view text) {
  if (OutputIsTerminal()) {
    PrintPainted(Readable(text));
  } else {
    PrintPainted(text);
  }
}

void PrintPainted(std::string_view text) {
  errno = 0;
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (written && std::fflush(stdout) == 0) return;
  if (errno == EPIPE) throw BrokenPipe();
  throw CommandError("cannot write to the standard output: " + ReasonOf(errno));
}

void PrintIfRead(std::string_view text) {
  try {
    Print(text);
  } catch (const BrokenPipe&) {
    return;
  }
}

bool OutputIsTerminal() { return isatty(STDOUT_FILENO) == 1; }

}  // namespace kestan_cli
