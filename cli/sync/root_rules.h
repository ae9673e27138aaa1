// SPDX-License-Identifier: GPL-3.0-or-later
// How the files of each root are read.
#ifndef KESTAN_CLI_SYNC_ROOT_RULES_H_
#define KESTAN_CLI_SYNC_ROOT_RULES_H_

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "cli/extract/reading.h"
#include "cli/files/glob.h"
#include "cli/sync/roots.h"

namespace kestan_cli {

// The reading rules of roots, made when they are first needed.
class RootRules {
 public:
  // Takes the roots of the index at `index`. The limits hold for all of them.
  RootRules(Roots roots, std::string index, CommandLimits converter_limits,
            std::uint64_t max_file_bytes);

  // Returns how to read the file `name`: as its innermost root says, or by its name alone.
  //   Throws   CommandError for a converter that is none or that may not be run, and for
  //            stop words that cannot be read.
  const ReadingRules& Of(const std::string& name);

 private:
  struct Made {
    Made(const ReadingOptions& options, CommandLimits limits, std::uint64_t max_bytes);
    const Converters converters;
    const ReadingRules rules;
  };

  const Roots roots_;
  const std::string index_;
  const CommandLimits limits_;
  const std::uint64_t max_bytes_;
  std::map<std::string, std::unique_ptr<Made>> made_;  // by the path of the root; "" for none
};

// Returns the patterns of `options`.
NameFilter FilterOf(const ReadingOptions& options);

// Returns `options` as they mean the same from every working directory: relative paths of programs
// and of the list of stop words become absolute.
ReadingOptions WithAbsolutePaths(ReadingOptions options);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_ROOT_RULES_H_
