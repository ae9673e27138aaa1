// SPDX-License-Identifier: GPL-3.0-or-later
// The standard input of the command.
#ifndef KESTAN_CLI_CONSOLE_INPUT_H_
#define KESTAN_CLI_CONSOLE_INPUT_H_

#include <cstddef>
#include <cstdio>
#include <string>

namespace kestan_cli {

// Reads `stream`, which is the standard input, to its end.
//   Throws   CommandError if it cannot be read, or holds more than `max_bytes`.
std::string ReadInput(std::FILE* stream, std::size_t max_bytes);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_INPUT_H_
