// SPDX-License-Identifier: GPL-3.0-or-later
// Threads that make segments of documents.
#ifndef KESTAN_SEARCH_INDEX_INVERTING_INVERTER_POOL_H_
#define KESTAN_SEARCH_INDEX_INVERTING_INVERTER_POOL_H_

#include <kestan/search/status.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "search/index/inverting/segment_maker.h"

namespace kestan::search {

// Hands documents to threads, each of which makes segments of its own. Which thread gets which
// documents depends on nothing but their order, so that the same documents make the same segments.
// Use it from one thread.
class InverterPool {
 public:
  struct Settings {
    std::string folder;
    bool with_positions = true;
    unsigned threads = 1;            // they begin when they have something to do
    std::size_t thread_memory = 0;   // see SegmentMaker
    std::uint64_t first_number = 1;  // of the segments
  };

  explicit InverterPool(Settings settings);
  ~InverterPool();  // ends the threads; segments that they wrote stay
  InverterPool(const InverterPool&) = delete;
  InverterPool& operator=(const InverterPool&) = delete;

  // Hands `documents` to a thread, with serials that ascend from call to call. Waits while it has
  // enough to do.
  //   Returns  the first error of that thread, in this call or in one of the next.
  Status Add(std::vector<PendingDocument> documents, unsigned thread);

  // Changes a document that was handed to `thread`.
  Status Change(PendingChange change, unsigned thread);

  // Has the threads write all that they have in memory, and ends them: the pool is of no more use.
  // Calls `goes_on` now and then, with the bytes of texts that are written.
  //   Returns  what they wrote, in order of numbers; the first error; kInterrupted.
  Result<std::vector<WrittenSegment>> Finish(
      const std::function<bool(std::uint64_t written_bytes)>& goes_on);

 private:
  class Worker;

  Worker& WorkerOf(unsigned thread);

  const Settings settings_;
  std::atomic<std::uint64_t> written_bytes_{0};
  std::vector<std::unique_ptr<Worker>> workers_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_INVERTING_INVERTER_POOL_H_
