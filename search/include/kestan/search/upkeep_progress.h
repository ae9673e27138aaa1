// SPDX-License-Identifier: GPL-3.0-or-later
// How far a copy, a conversion or a repair has come.
#ifndef KESTAN_SEARCH_UPKEEP_PROGRESS_H_
#define KESTAN_SEARCH_UPKEEP_PROGRESS_H_

#include <cstdint>
#include <functional>

namespace kestan::search {

// Called now and then, by the thread that called the function. Returns whether to go on; if not,
// or if it throws, the function fails with kInterrupted and leaves nothing. May be null.
using UpkeepProgress = std::function<bool(std::uint64_t done_bytes, std::uint64_t all_bytes)>;

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_UPKEEP_PROGRESS_H_
