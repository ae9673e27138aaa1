// SPDX-License-Identifier: GPL-3.0-or-later
// Completion of the command line in zsh.
#ifndef KESTAN_CLI_APP_ZSH_COMPLETION_H_
#define KESTAN_CLI_APP_ZSH_COMPLETION_H_

#include <string>
#include <vector>

#include "cli/app/command.h"

namespace kestan_cli {

// Returns the script that zsh reads to complete the arguments of `commands`.
std::string ZshCompletion(const std::vector<Command>& commands);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_APP_ZSH_COMPLETION_H_
