// SPDX-License-Identifier: GPL-3.0-or-later
// Runs an untrusted program: without a shell, and within limits.
#ifndef KESTAN_CLI_EXTRACT_CONVERTER_LIMITED_COMMAND_H_
#define KESTAN_CLI_EXTRACT_CONVERTER_LIMITED_COMMAND_H_

#include <cstdint>
#include <string>
#include <vector>

namespace kestan_cli {

struct CommandLimits {
  unsigned seconds = 60;  // of processor time, and of elapsed time
  std::uint64_t memory_bytes = std::uint64_t{1} << 30;
  std::uint64_t output_bytes = std::uint64_t{1} << 28;
};

struct CommandOutcome {
  std::string output;   // what it wrote to its standard output
  std::string failure;  // the end of a sentence: "ended with status 3: bad file"; empty if none
};

// Runs the program at `path`, with `arguments` (the first is its own name), and waits for its end.
// Its standard input is empty, it inherits no descriptor, and it ends with this process. A program
// that exceeds a limit is killed with its process group, and so is one that runs when a signal asks
// this process to end while there is an Interruption.
//   Throws   std::bad_alloc only.
CommandOutcome RunLimited(const std::string& path, const std::vector<std::string>& arguments,
                          const CommandLimits& limits);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_CONVERTER_LIMITED_COMMAND_H_
