// SPDX-License-Identifier: GPL-3.0-or-later
// Bounds what a long run over many records leaves in the store's cache.
#ifndef KESTAN_STORAGE_WALK_FLUSH_POLICY_H_
#define KESTAN_STORAGE_WALK_FLUSH_POLICY_H_

#include <kestan/storage/database.h>

#include <cstddef>
#include <cstdint>
#include <limits>

namespace kestan {

// How many records, or bytes of them, a run reads or writes between two flushes.
struct FlushPolicy {
  static constexpr std::uint64_t kUnlimited = std::numeric_limits<std::uint64_t>::max();

  static constexpr FlushPolicy Never() { return {kUnlimited, kUnlimited, 0, nullptr}; }

  // Flushes after each `count` records, however long they are.
  static constexpr FlushPolicy Every(std::uint64_t count) {
    return {count, kUnlimited, 0, nullptr};
  }

  std::uint64_t records = 1000;
  std::uint64_t bytes = std::uint64_t{1} << 24;
  std::uint64_t extra_before_first = 0;  // records that the first flush waits for in addition
  Database* second_store = nullptr;      // flushed after the store, which need not be the same file
};

// Flushes a store when enough has been read from it or written to it.
class PeriodicFlush {
 public:
  // Borrows `store`, and the second store of `policy`.
  explicit PeriodicFlush(Database& store, const FlushPolicy& policy = {})
      : store_(store), policy_(policy), records_left_(policy.records) {
    if (records_left_ != FlushPolicy::kUnlimited) records_left_ += policy.extra_before_first;
  }

  // Counts a record of `bytes` bytes. A flush keeps it in the cache while somebody holds it.
  //   Returns  0, or the error of a flush of the store.
  int Note(std::size_t bytes) {
    --records_left_;
    bytes_ += bytes;
    if (records_left_ != 0 && bytes_ < policy_.bytes) return 0;
    records_left_ = policy_.records;
    bytes_ = 0;
    const int error = store_.Flush();
    if (policy_.second_store != nullptr) policy_.second_store->Flush();
    return error;
  }

 private:
  Database& store_;
  FlushPolicy policy_;
  std::uint64_t records_left_;  // until the next flush
  std::uint64_t bytes_ = 0;     // since the last one
};

}  // namespace kestan

#endif  // KESTAN_STORAGE_WALK_FLUSH_POLICY_H_
