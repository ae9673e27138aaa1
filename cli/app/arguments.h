// Reading the command line, and telling what it may hold.
#ifndef KESTAN_CLI_APP_ARGUMENTS_H_
#define KESTAN_CLI_APP_ARGUMENTS_H_

#include <string>
#include <vector>

#include "cli/app/command.h"

namespace kestan_cli {

struct Request {
  const Command* command = nullptr;  // null if only `text` was asked for
  Values values;
  std::string text;  // the help, or the version
};

// Reads `arguments`, those after the name of the program. Borrows `commands`, which the request
// points into.
//   Throws   CommandError if they do not make a command.
Request ReadArguments(const std::vector<Command>& commands, const Arguments& arguments);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_APP_ARGUMENTS_H_
