// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/path_pattern.h"

#include "cli/commands/search/filters/lower_case.h"

namespace kestan_cli {

PathPattern::PathPattern(std::string_view text) : text_(LowerCaseOfAll(text)) {
  if (text_.find_first_of("*?") != std::string::npos) glob_.emplace("**/" + text_);
}

bool PathPattern::Matches(std::string_view path) const {
  const std::string lower = LowerCaseOfAll(path);
  return glob_ ? glob_->Matches(lower) : lower.find(text_) != std::string::npos;
}

}  // namespace kestan_cli
