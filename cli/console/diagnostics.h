// SPDX-License-Identifier: GPL-3.0-or-later
// The one way to the standard error stream. No other file writes to it.
#ifndef KESTAN_CLI_CONSOLE_DIAGNOSTICS_H_
#define KESTAN_CLI_CONSOLE_DIAGNOSTICS_H_

#include <string_view>

namespace kestan_cli {

// Prints "kestan: WHAT" on one line, on a terminal on as many as it takes: what is wrong, or what
// the user should know. Control characters are escaped.
void ReportProblem(std::string_view what);

// Prints `line`, which comments on an answer, such as a note on a search, in the same way.
void PrintDiagnostic(std::string_view line);

// Prints `text`, lines of the engine or the store. Keeps line feeds, escapes other control
// characters. Allocates no memory, for the lines may say that there is none.
void PrintDiagnostics(std::string_view text);

// Prints `text` as it is, with its control characters: the progress of a run.
void PrintProgress(std::string_view text);

// Writes out what is still buffered, before the stream is redirected.
void FlushDiagnostics();

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_DIAGNOSTICS_H_
