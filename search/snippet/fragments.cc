// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/snippet/fragments.h"

#include <utility>

#include "search/text/white_space.h"

namespace kestan::search {

void FragmentLine::Add(std::string_view text, bool matches) {
  std::string added;
  for (const char byte : text) {
    if (IsBlankOrControl(byte)) {
      gap_ = !ends_in_blank_;
      continue;
    }
    if (gap_) added += ' ';
    gap_ = false;
    ends_in_blank_ = false;
    added += byte;
  }
  if (gap_ && !matches && !added.empty()) {
    added += ' ';
    gap_ = false;
    ends_in_blank_ = true;
  }
  Append(std::move(added), matches);
}

std::vector<Fragment> FragmentLine::Take() {
  const bool ends_in_blank = !fragments_.empty() && fragments_.back().text.back() == ' ';
  if (ends_in_blank) fragments_.back().text.pop_back();
  if (!fragments_.empty() && fragments_.back().text.empty()) fragments_.pop_back();
  return std::move(fragments_);
}

// A blank before a match belongs to the text before it.
void FragmentLine::Append(std::string added, bool matches) {
  if (matches && !added.empty() && added.front() == ' ') {
    Append(" ", false);
    added.erase(0, 1);
  }
  if (added.empty()) return;
  const bool continues = !matches && !fragments_.empty() && !fragments_.back().matches;
  if (continues) {
    fragments_.back().text += added;
  } else {
    fragments_.push_back({std::move(added), matches});
  }
}

}  // namespace kestan::search
