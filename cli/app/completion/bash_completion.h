// SPDX-License-Identifier: GPL-3.0-or-later
// Completion of the command line in bash.
#ifndef KESTAN_CLI_APP_BASH_COMPLETION_H_
#define KESTAN_CLI_APP_BASH_COMPLETION_H_

#include <string>
#include <vector>

#include "cli/app/command.h"

namespace kestan_cli {

// Returns the script that bash reads to complete the arguments of `commands`.
std::string BashCompletion(const std::vector<Command>& commands);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_APP_BASH_COMPLETION_H_
