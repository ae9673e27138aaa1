// SPDX-License-Identifier: GPL-3.0-or-later
// Tasks on several threads.
#ifndef KESTAN_SEARCH_RANKING_PARALLEL_H_
#define KESTAN_SEARCH_RANKING_PARALLEL_H_

#include <cstddef>
#include <functional>

namespace kestan::search {

// Calls `task` with each number below `count`, once, on up to `threads` threads, the caller's among
// them, and no more than the processor has cores. Where the system starts no thread, the others do
// its work. An exception of a task is thrown here, once all threads have ended.
void ParallelFor(std::size_t count, std::size_t threads,
                 const std::function<void(std::size_t)>& task);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_RANKING_PARALLEL_H_
