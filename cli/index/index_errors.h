// SPDX-License-Identifier: GPL-3.0-or-later
// The errors of index files, as messages to the user.
#ifndef KESTAN_CLI_INDEX_INDEX_ERRORS_H_
#define KESTAN_CLI_INDEX_INDEX_ERRORS_H_

#include <kestan/results.h>
#include <kestan/search.h>

#include <string>
#include <utility>

#include "cli/console/message.h"

namespace kestan_cli {

inline constexpr const char* kSeeRepair = "kestan repair saves what it still holds";
inline constexpr const char* kIfItWasOne = "; if it was one, see kestan repair";

inline constexpr const char* kNoSuchIndex = "no such file or folder; kestan index makes one";
inline constexpr const char* kOneFileIsReadOnly =
    "an index of one file is only read; kestan convert FILE FOLDER makes a folder of it";

// Each returns the error to throw for the index that is called `path` in messages.

CommandError CannotOpen(const std::string& path, const std::string& reason, int status = kFailed);
CommandError CannotChange(const std::string& path, const std::string& reason, int status = kFailed);

// The store refused to open the file with `error`; errno was `system_error` right after.
CommandError StoreNotOpened(const std::string& path, kestan::StoreError error, int system_error);

// The store could not read a record, with `error`.
CommandError CannotRead(const std::string& path, kestan::StoreError error);

// A function of the search library returned `status`. The error has the status kBusy while another
// process is changing the index.
CommandError ErrorOf(const kestan::search::Status& status, const std::string& path);

// Throws ErrorOf(`status`, `path`) unless all went well.
void CheckStatus(const kestan::search::Status& status, const std::string& path);

// Returns the value of `result`, or throws as CheckStatus() does.
template <typename T>
T ValueOf(kestan::search::Result<T> result, const std::string& path) {
  CheckStatus(result.status(), path);
  return std::move(*result);
}

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_INDEX_ERRORS_H_
