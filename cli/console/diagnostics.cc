// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/diagnostics.h"

#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <string>

#include "cli/console/columns.h"
#include "cli/console/control_characters.h"
#include "cli/console/message.h"

namespace kestan_cli {
namespace {

// Returns how many bytes of `text` come before the first control character that is not a line feed.
std::size_t HarmlessBytes(std::string_view text) {
  std::size_t bytes = 0;
  while (bytes < text.size()) {
    const Character next = FirstCharacter(text.substr(bytes));
    if (next.is_control && text[bytes] != '\n') break;
    bytes += next.bytes;
  }
  return bytes;
}

}  // namespace

void ReportProblem(std::string_view what) { PrintDiagnostic("kestan: " + std::string(what)); }

void PrintDiagnostic(std::string_view line) {
  constexpr std::size_t kIndent = 2;
  const std::string text = OneLine(line);
  const bool is_terminal = isatty(STDERR_FILENO) == 1;
  PrintProgress((is_terminal ? Wrapped(text, ColumnsOfTerminal(STDERR_FILENO), kIndent) : text) +
                "\n");
}

void PrintDiagnostics(std::string_view text) {
  while (!text.empty()) {
    const std::size_t bytes = HarmlessBytes(text);
    PrintProgress(text.substr(0, bytes));
    text.remove_prefix(bytes);
    if (text.empty()) return;
    PrintProgress(OneLine(text.substr(0, 1)));
    text.remove_prefix(1);
  }
}

void PrintProgress(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); }

void FlushDiagnostics() { std::fflush(stderr); }

}  // namespace kestan_cli
