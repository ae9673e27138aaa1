// The exit statuses of the command, as the manual pages list them.
#ifndef KESTAN_CLI_CONSOLE_EXIT_STATUS_H_
#define KESTAN_CLI_CONSOLE_EXIT_STATUS_H_

namespace kestan_cli {

constexpr int kDone = 0;
constexpr int kNoHits = 1;      // a search found nothing
constexpr int kIncomplete = 1;  // some files were not indexed, or only in part
constexpr int kFailed = 2;      // the message says why
constexpr int kBusy = 75;       // another process is changing the index: try again later

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_EXIT_STATUS_H_
