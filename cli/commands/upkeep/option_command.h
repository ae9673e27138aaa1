// SPDX-License-Identifier: GPL-3.0-or-later
// What the commands that get, set and clear option flags share.
#ifndef KESTAN_CLI_COMMANDS_UPKEEP_OPTION_COMMAND_H_
#define KESTAN_CLI_COMMANDS_UPKEEP_OPTION_COMMAND_H_

#include <kestan/search.h>

#include <cstdint>
#include <string>

#include "cli/app/command.h"
#include "cli/index/opened_writer.h"

namespace kestan_cli {

// The index keeps no positions of words.
inline constexpr std::uint32_t kNoPositions = 1;

inline Positional FlagsArgument() { return {"FLAGS", "the sum of the flags"}; }

//   Throws   CommandError if they are not the sum of any flags.
inline std::uint32_t FlagsIn(const Values& values) {
  return static_cast<std::uint32_t>(values.Number("FLAGS", 0, 1, 0xffffffffLL));
}

// Returns the sum of the flags of the index, which messages call `index`.
//   Throws   CommandError if memory is short.
std::uint32_t FlagsOf(const kestan::search::IndexReader& reader, const std::string& index);

// Keeps `flags`, the sum of flags without kNoPositions, in the next commit.
void KeepFlags(OpenedWriter& opened, std::uint32_t flags);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_UPKEEP_OPTION_COMMAND_H_
