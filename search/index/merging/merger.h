// SPDX-License-Identifier: GPL-3.0-or-later
// Making one segment of several.
#ifndef KESTAN_SEARCH_INDEX_MERGING_MERGER_H_
#define KESTAN_SEARCH_INDEX_MERGING_MERGER_H_

#include <kestan/search/status.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "search/segment/segment.h"
#include "search/segment/segment_info.h"

namespace kestan::search {

// What becomes of the positions of words.
enum class WordPositions : std::uint8_t { kKept, kDropped };

// Merges `segments`, of whatever folder, into segment `number` of the folder `folder`: their living
// documents in order, with new codes and with their edits, and the postings of these, a term at a
// time. One posting record is in memory at a time. The checksums of all files are compared first.
// Calls `advance`, which may be null, now and then with the number of bytes of posting records read
// since the last call; it returns whether to go on.
//   Returns  kInterrupted, kDamaged, kSystem; nothing is left of the new segment then. Where the
//            error is one of reading a segment, `*unreadable`, which may be null, says which one
//            of `segments`. Where no document lives: no documents, and no files.
Result<SegmentInfo> MergeSegments(const std::vector<std::shared_ptr<const Segment>>& segments,
                                  const std::string& folder, std::uint64_t number,
                                  const std::function<bool(std::uint64_t bytes)>& advance,
                                  std::optional<std::size_t>* unreadable = nullptr,
                                  WordPositions positions = WordPositions::kKept);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_MERGING_MERGER_H_
