// SPDX-License-Identifier: GPL-3.0-or-later
// Parts of paths, as people write them.
#ifndef KESTAN_CLI_COMMANDS_SEARCH_FILTERS_PATH_PATTERN_H_
#define KESTAN_CLI_COMMANDS_SEARCH_FILTERS_PATH_PATTERN_H_

#include <optional>
#include <string>
#include <string_view>

#include "cli/files/glob.h"

namespace kestan_cli {

// A text that occurs anywhere in a path; or, with * or ?, a Glob that matches the whole path or all
// that follows one of its slashes. Capitals do not count.
class PathPattern {
 public:
  explicit PathPattern(std::string_view text);

  bool Matches(std::string_view path) const;

 private:
  std::string text_;  // in lower case
  std::optional<Glob> glob_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_SEARCH_FILTERS_PATH_PATTERN_H_
