// The manual pages, generated from the declarations of the commands.
#ifndef KESTAN_CLI_APP_MANUAL_H_
#define KESTAN_CLI_APP_MANUAL_H_

#include <map>
#include <string>
#include <vector>

#include "cli/app/command.h"

namespace kestan_cli {

// Returns the pages by the names of their files: kestan.1, and kestan-NAME.1 for each name of a
// command and each group of commands. The text is in roff, with the macros of man(7).
std::map<std::string, std::string> ManualPages(const std::vector<Command>& commands);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_APP_MANUAL_H_
