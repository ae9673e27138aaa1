// SPDX-License-Identifier: GPL-3.0-or-later
// The manual pages, generated from the declarations of the commands.
#ifndef KESTAN_CLI_APP_MANUAL_H_
#define KESTAN_CLI_APP_MANUAL_H_

#include <map>
#include <string>
#include <vector>

#include "cli/app/command.h"

namespace kestan_cli {

// What every page says of itself.
struct ManualEdition {
  std::string version;
  std::string date;  // 2026-11-22
};

// Returns the pages by the names of their files: kestan.1, and kestan-NAME.1 for each name of a
// command and each group of commands. The text is in roff, with the macros of man(7).
std::map<std::string, std::string> ManualPages(const std::vector<Command>& commands,
                                               const ManualEdition& edition);

// Returns the page kestan-query.7 on the language of queries, made of docs/queries.md.
std::string QueryPage(const std::string& markdown, const ManualEdition& edition);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_APP_MANUAL_H_
