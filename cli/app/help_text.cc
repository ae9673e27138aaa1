// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/help_text.h"

#include <unistd.h>

#include <algorithm>
#include <sstream>

#include "cli/console/columns.h"
#include "cli/console/output.h"

namespace kestan_cli {
namespace {

// Returns how far what goes on after the end of a line is indented.
std::size_t IndentOf(const std::string& line, std::size_t columns) {
  const bool is_item = line.compare(0, 2, "  ") == 0;
  return is_item ? std::min(kHelpColumn, columns / 2) : 0;
}

}  // namespace

std::string WrappedHelp(const std::string& help, std::size_t columns) {
  std::istringstream lines(help);
  std::string wrapped;
  for (std::string line; std::getline(lines, line);) {
    const bool is_example = line.compare(0, 9, "Example: ") == 0;
    wrapped += is_example ? line : Wrapped(line, columns, IndentOf(line, columns));
    wrapped += "\n";
  }
  return wrapped;
}

void PrintHelp(const std::string& help) {
  Print(OutputIsTerminal() ? WrappedHelp(help, ColumnsOfTerminal(STDOUT_FILENO)) : help);
}

}  // namespace kestan_cli
