#include "cli/commands/search/filters/path_pattern.h"

#include <cstddef>

#include "cli/commands/search/filters/lower_case.h"

namespace kestan_cli {

PathPattern::PathPattern(std::string_view text) : text_(LowerCaseOfAll(text)) {
  if (text_.find_first_of("*?") != std::string::npos) glob_.emplace(text_);
}

bool PathPattern::Matches(std::string_view path) const {
  const std::string lower = LowerCaseOfAll(path);
  if (!glob_) return lower.find(text_) != std::string::npos;
  std::string_view rest = lower;
  while (!glob_->Matches(rest)) {
    const std::size_t slash = rest.find('/');
    if (slash == std::string_view::npos) return false;
    rest.remove_prefix(slash + 1);
  }
  return true;
}

}  // namespace kestan_cli
