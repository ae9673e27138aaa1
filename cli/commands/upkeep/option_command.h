// What the commands that set and clear option flags share.
#ifndef KESTAN_CLI_COMMANDS_UPKEEP_OPTION_COMMAND_H_
#define KESTAN_CLI_COMMANDS_UPKEEP_OPTION_COMMAND_H_

#include "cli/app/command.h"

namespace kestan_cli {

inline Positional FlagsArgument() { return {"FLAGS", "the sum of the flags"}; }

//   Throws   CommandError if they are not the sum of any flags.
inline unsigned long FlagsIn(const Values& values) {
  return static_cast<unsigned long>(values.Number("FLAGS", 0, 1, 0xffffffffLL));
}

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_UPKEEP_OPTION_COMMAND_H_
