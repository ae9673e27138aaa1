// SPDX-License-Identifier: GPL-3.0-or-later
// Completion of the command line in fish.
#ifndef KESTAN_CLI_APP_FISH_COMPLETION_H_
#define KESTAN_CLI_APP_FISH_COMPLETION_H_

#include <string>
#include <vector>

#include "cli/app/command.h"

namespace kestan_cli {

// Returns the script that fish reads to complete the arguments of `commands`.
std::string FishCompletion(const std::vector<Command>& commands);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_APP_FISH_COMPLETION_H_
