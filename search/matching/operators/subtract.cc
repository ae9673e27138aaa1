// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "search/matching/operators/common.h"
#include "search/matching/operators/operators.h"

namespace kestan::search {

Occurrences Subtract(const Segment& segment, const Occurrences& operand, Need need) {
  Occurrences found;
  const Position anywhere = 0;
  const bool has_removed = segment.edits().removed_count() > 0;
  std::size_t next = 0;
  for (std::size_t i = 1; i <= segment.size(); ++i) {
    const auto code = static_cast<Code>(i);
    if (next < operand.size() && operand.codes[next] == code) {
      ++next;
    } else if (has_removed && segment.IsRemoved(code)) {
      continue;
    } else if (need == Need::kPositions) {
      found.Append(code, {&anywhere, 1});
    } else {
      found.codes.push_back(code);
    }
  }
  if (need == Need::kCounts) found.counts.assign(found.size(), 1);
  return found;
}

// Stored always and counted where it is kept: which list comes next cannot be predicted.
void Exclude(const Occurrences& excluded, std::vector<Code>* codes) {
  const std::vector<Code>& others = excluded.codes;
  const bool seeks = others.size() / kMuchLonger > codes->size();
  std::size_t kept = 0;
  std::size_t i = 0;
  std::size_t next = 0;
  while (i < codes->size() && next < others.size()) {
    const Code code = (*codes)[i];
    const Code other = others[next];
    if (seeks && other < code) {
      next = SeekCode(others, next, code);
      continue;
    }
    (*codes)[kept] = code;
    kept += code < other ? 1 : 0;
    i += code <= other ? 1 : 0;
    next += other <= code ? 1 : 0;
  }
  const auto rest = codes->begin() + static_cast<std::ptrdiff_t>(i);
  codes->erase(std::copy(rest, codes->end(), codes->begin() + static_cast<std::ptrdiff_t>(kept)),
               codes->end());
}

}  // namespace kestan::search
