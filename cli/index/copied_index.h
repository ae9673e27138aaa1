// Making a new index file.
#ifndef KESTAN_CLI_INDEX_COPIED_INDEX_H_
#define KESTAN_CLI_INDEX_COPIED_INDEX_H_

#include <kestan/kestan.h>

#include <functional>
#include <string>

#include "cli/console/message.h"

namespace kestan_cli {

// Returns what to throw where no file can be made at `path`.
CommandError CannotMake(const std::string& path, const std::string& reason);

// Has `make` make a file at the path that it is given, in a folder beside `path`, and puts it at
// `path` when it is on the disk. Whatever goes wrong before leaves nothing. Gives it the group and
// the mode of the file at `like`, unless that is empty.
//   Throws   CommandError if there is something at `path` already, and what `make` throws.
void MakeWhole(const std::string& path, const std::string& like,
               const std::function<void(const std::string&)>& make);

// Copies the index at `index` into a new file at `path`, and compares the two.
//   Throws   CommandError if there is something at `path` already, or the copy is not complete.
void CopyIndex(Kestan& engine, const std::string& index, const std::string& path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_COPIED_INDEX_H_
