// SPDX-License-Identifier: GPL-3.0-or-later
// Segments whose index files gdbm has written.
#ifndef KESTAN_SEARCH_UPKEEP_LOOSE_SEGMENT_H_
#define KESTAN_SEARCH_UPKEEP_LOOSE_SEGMENT_H_

#include <kestan/search/status.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "search/segment/derived_files.h"
#include "search/segment/segment.h"

namespace kestan::search {

// The number of a loose segment, which no segment of an index has.
constexpr std::uint64_t kLooseSegment = 0;

// Returns the path of its index file in `folder`.
std::string LooseFile(const std::string& folder);

// Makes the derived files of the loose segment in `folder`, and opens it. See DeriveLooseFiles().
// `edits`, which may be null, changes the edits by which codes without a document are removed.
Result<std::shared_ptr<const Segment>> OpenLooseSegment(
    const std::string& folder, const std::vector<KnownDocument>& known,
    const std::function<void(Edits* edits)>& edit = nullptr);

// Removes its files.
void RemoveLooseSegment(const std::string& folder);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_UPKEEP_LOOSE_SEGMENT_H_
