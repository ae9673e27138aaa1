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

}  // namespace kestan::search
