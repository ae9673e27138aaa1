// SPDX-License-Identifier: GPL-3.0-or-later
// Which segments to merge.
#ifndef KESTAN_SEARCH_INDEX_MERGING_MERGE_POLICY_H_
#define KESTAN_SEARCH_INDEX_MERGING_MERGE_POLICY_H_

#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

#include "search/segment/segment_info.h"

namespace kestan::search {

// No merged segment has more documents or bytes.
constexpr std::uint32_t kMaxMergedDocuments = 60'000;
constexpr std::uint64_t kMaxMergedBytes = std::uint64_t{1} << 30;

// How segments are merged. They are sorted into tiers by size, each tier `factor` times as large as
// the one before it. When a tier has `factor` segments they become one of the next tier. So there
// are fewer than `factor` segments of each tier, and a document is written about once for each. A
// segment of more than half the limits above is full: it stays as it is, and belongs to no tier.
struct MergePolicy {
  unsigned factor = 8;                     // at least 2
  std::uint64_t smallest_tier = 32 << 10;  // bytes; all smaller segments are of the first tier
  double removed_share = 0.25;             // a segment with more removed documents is written again
  std::set<std::uint64_t> left_out;  // numbers of segments that stay as they are: damaged ones
};

// Returns how many bytes the living documents of a segment take, about.
std::uint64_t LivingBytes(const SegmentInfo& segment);

// Returns the tier of a segment by the bytes of its living documents: 0 below `smallest_tier`, and
// one more for each `factor`.
unsigned TierOf(const SegmentInfo& segment, const MergePolicy& policy);

bool IsFull(const SegmentInfo& segment);

// Returns the positions in `segments`, ascending, of those to merge next into one, which takes the
// place of the first; empty if none are to be merged. Segments that are merged lie side by side,
// those between them aside that are full or left out: documents stay in the order in which they
// were added, but for those of such segments. Merging what this returns again and again comes to an
// end.
std::vector<std::size_t> ChooseMerge(const std::vector<SegmentInfo>& segments,
                                     const MergePolicy& policy);

// Returns the segments in groups of neighbours, each within the limits of a segment, but for those
// whose numbers are in `left_out`.
std::vector<std::vector<std::size_t>> GroupNeighbours(const std::vector<SegmentInfo>& segments,
                                                      const std::set<std::uint64_t>& left_out = {});

// Returns the groups of neighbours that a compaction merges, each within the limits of a segment.
// Those that need not be written again (alone, nothing removed, no edits) stay as they are, and so
// do the segments whose numbers are in `left_out`.
std::vector<std::vector<std::size_t>> ChooseCompaction(
    const std::vector<SegmentInfo>& segments, const std::set<std::uint64_t>& left_out = {});

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_MERGING_MERGE_POLICY_H_
