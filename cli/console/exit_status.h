// SPDX-License-Identifier: GPL-3.0-or-later
// The exit statuses of the command, as the manual pages list them.
#ifndef KESTAN_CLI_CONSOLE_EXIT_STATUS_H_
#define KESTAN_CLI_CONSOLE_EXIT_STATUS_H_

namespace kestan_cli {

constexpr int kDone = 0;
constexpr int kNoHits = 1;       // a search found nothing
constexpr int kFaultsFound = 1;  // a check found faults
constexpr int kIncomplete = 1;   // not all files were indexed, or not all documents were saved
constexpr int kFailed = 2;       // the message says why
constexpr int kBusy = 75;        // another process is changing the index: try again later

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_EXIT_STATUS_H_
