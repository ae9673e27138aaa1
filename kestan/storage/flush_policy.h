// Bounds what a long run over many records leaves in the store's cache.
#ifndef KESTAN_STORAGE_FLUSH_POLICY_H_
#define KESTAN_STORAGE_FLUSH_POLICY_H_

#include <kestan/storage/database.h>

#include <cstddef>

namespace kestan {

// Flushes a store when enough has been read from it or written to it.
class FlushPolicy {
 public:
  explicit FlushPolicy(Database& store) : store_(store) {}

  // Notes a record of `bytes` bytes, which nobody may hold any more, or it would stay cached.
  //   Returns  0, or the error of a flush.
  int Note(std::size_t bytes) {
    ++records_;
    bytes_ += bytes;
    if (records_ < kRecords && bytes_ < kBytes) return 0;
    records_ = 0;
    bytes_ = 0;
    return store_.Flush();
  }

 private:
  static constexpr std::size_t kRecords = 1000;
  static constexpr std::size_t kBytes = std::size_t{1} << 24;

  Database& store_;
  std::size_t records_ = 0;
  std::size_t bytes_ = 0;
};

}  // namespace kestan

#endif  // KESTAN_STORAGE_FLUSH_POLICY_H_
