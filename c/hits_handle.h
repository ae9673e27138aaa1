// SPDX-License-Identifier: GPL-3.0-or-later
// The answer to a search.
#ifndef KESTAN_C_HITS_HANDLE_H_
#define KESTAN_C_HITS_HANDLE_H_

#include <cstddef>
#include <memory>
#include <vector>

#include "c/reader_handle.h"

struct kestan_hits final : kestan::c::Handle {
  kestan_hits(kestan::search::SearchResults found, std::shared_ptr<kestan::c::OpenReader> searched);

  // Returns the hit that `view`, which need not be one of `views`, shows; null if it is none.
  const kestan::search::Hit* HitOf(const kestan_hit* view) const;

  const kestan::search::SearchResults results;
  const std::shared_ptr<kestan::c::OpenReader> reader;  // for their summaries
  std::vector<kestan_hit> views;                        // of `results.hits`
  std::size_t next = 0;
};

#endif  // KESTAN_C_HITS_HANDLE_H_
