// SPDX-License-Identifier: GPL-3.0-or-later
// The progress of merging, as the host hears of it.
#ifndef KESTAN_SEARCH_UPKEEP_MERGE_PROGRESS_H_
#define KESTAN_SEARCH_UPKEEP_MERGE_PROGRESS_H_

#include <kestan/search/upkeep_progress.h>

#include <algorithm>
#include <cstdint>
#include <functional>

#include "search/index/caught.h"

namespace kestan::search {

// Adds up what merges report, one after the other.
class MergeProgress {
 public:
  // Borrows `progress`, which may be null.
  MergeProgress(const UpkeepProgress& progress, std::uint64_t all_bytes)
      : progress_(progress), all_bytes_(all_bytes) {}

  // Counts `bytes` more. Returns whether to go on.
  bool Add(std::uint64_t bytes) {
    done_bytes_ = std::min(done_bytes_ + bytes, all_bytes_);
    return GoesOn(progress_, done_bytes_, all_bytes_);
  }

  // For MergeSegments(), which it must outlive.
  std::function<bool(std::uint64_t bytes)> Advance() {
    return [this](std::uint64_t bytes) { return Add(bytes); };
  }

 private:
  const UpkeepProgress& progress_;
  const std::uint64_t all_bytes_;
  std::uint64_t done_bytes_ = 0;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_UPKEEP_MERGE_PROGRESS_H_
