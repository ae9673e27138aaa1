// Creates a file at once: with all of its bytes, or not at all.
#ifndef KESTAN_CLI_INDEX_ATOMIC_CREATE_H_
#define KESTAN_CLI_INDEX_ATOMIC_CREATE_H_

#include <functional>
#include <string>

#include "cli/console/message.h"

namespace kestan_cli {

// Returns the error that no file can be made at `path`.
CommandError CannotMake(const std::string& path, const std::string& reason);

// Calls `make` with a path in a directory beside `path`, where it makes a file. Moves the file to
// `path` once it is on the disk; leaves nothing if anything fails before. The file gets the group
// and the mode of the file at `like`, unless `like` is empty.
//   Throws   CommandError if there is something at `path` already, and what `make` throws.
void CreateAtomically(const std::string& path, const std::string& like,
                      const std::function<void(const std::string&)>& make);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_ATOMIC_CREATE_H_
