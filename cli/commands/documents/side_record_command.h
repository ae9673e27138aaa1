// SPDX-License-Identifier: GPL-3.0-or-later
// What the commands that get, set and delete side records share.
#ifndef KESTAN_CLI_COMMANDS_DOCUMENTS_SIDE_RECORD_COMMAND_H_
#define KESTAN_CLI_COMMANDS_DOCUMENTS_SIDE_RECORD_COMMAND_H_

#include <string>

#include "cli/app/command.h"
#include "cli/console/message.h"
#include "cli/index/side_record.h"

namespace kestan_cli {

inline Positional DocumentArgument() {
  return {"NAME", "the document's name, as `kestan list` prints it, or another path of its file"};
}

// Returns the error that the document `name` has no such record.
inline CommandError NoSideRecord(const SideRecord& record, const std::string& name,
                                 const std::string& index) {
  return CommandError("document " + Quoted(name) + " of index " + Quoted(index) + " has no " +
                      record.noun);
}

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_DOCUMENTS_SIDE_RECORD_COMMAND_H_
