// Which segments to merge.
#ifndef KESTAN_SEARCH_INDEX_MERGE_POLICY_H_
#define KESTAN_SEARCH_INDEX_MERGE_POLICY_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/segment/segment_info.h"

namespace kestan::search {

// No merged segment has more documents or bytes.
constexpr std::uint32_t kMaxMergedDocuments = 60'000;
constexpr std::uint64_t kMaxMergedBytes = std::uint64_t{1} << 30;

struct MergePolicy {
  unsigned factor = 8;                      // how many segments of a tier are merged
  std::uint64_t smallest_tier = 256 << 10;  // bytes; all smaller segments are of the first tier
  double removed_share = 0.25;  // a segment with more removed documents is written again
};

// Returns the tier of a segment by its bytes, those of removed documents left out in proportion: 0
// below `smallest_tier`, and one more for each `factor`.
unsigned TierOf(const SegmentInfo& segment, const MergePolicy& policy);

// Returns the positions in `segments`, ascending, of those to merge next into one; empty if none
// are to be merged. Segments that are merged lie side by side, so that documents stay in the order
// in which they were added. Merging what this returns again and again comes to an end.
std::vector<std::size_t> ChooseMerge(const std::vector<SegmentInfo>& segments,
                                     const MergePolicy& policy);

// Returns groups of neighbours that a compaction merges, each within the limits of a segment.
// Those that need not be written again (alone, nothing removed, no edits) are left out.
std::vector<std::vector<std::size_t>> ChooseCompaction(const std::vector<SegmentInfo>& segments);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_MERGE_POLICY_H_
