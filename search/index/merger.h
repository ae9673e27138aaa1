// Making one segment of several.
#ifndef KESTAN_SEARCH_INDEX_MERGER_H_
#define KESTAN_SEARCH_INDEX_MERGER_H_

#include <kestan/search/status.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "search/segment/segment.h"
#include "search/segment/segment_info.h"

namespace kestan::search {

// Merges `segments` into segment `number` in `folder`: their living documents in order, with new
// codes and with their edits, and the postings of these, a term at a time. One posting record is in
// memory at a time. Calls `advance` now and then with the number of bytes of posting records read
// since the last call; it returns whether to go on.
//   Returns  kInterrupted, kDamaged, kSystem; nothing is left of the new segment then. A segment
//            without documents where none of them lives.
Result<SegmentInfo> MergeSegments(const std::vector<std::shared_ptr<const Segment>>& segments,
                                  const std::string& folder, std::uint64_t number,
                                  const std::function<bool(std::uint64_t bytes)>& advance);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_MERGER_H_
