// SPDX-License-Identifier: GPL-3.0-or-later
// Reads the command line.
#ifndef KESTAN_CLI_APP_ARGUMENTS_H_
#define KESTAN_CLI_APP_ARGUMENTS_H_

#include <string>
#include <vector>

#include "cli/app/command.h"

namespace kestan_cli {

struct Request {
  const Command* command = nullptr;  // null if the request is for `text` only
  Values values;
  std::string text;  // the help, or the version
};

// Reads `arguments`, those after the name of the program. Borrows `commands`, which the request
// points into.
//   Throws   CommandError if they are not valid.
Request ReadArguments(const std::vector<Command>& commands, const Arguments& arguments);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_APP_ARGUMENTS_H_
