// SPDX-License-Identifier: GPL-3.0-or-later
// Keeps what runs of text were turned into, for texts that repeat them.
#ifndef KESTAN_SEARCH_TEXT_RUN_CACHE_H_
#define KESTAN_SEARCH_TEXT_RUN_CACHE_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

// A cache of bounded size. A full bucket drops its oldest entry. So texts whose runs were chosen to
// share one bucket cost no more than texts that never repeat a run, and the hash needs no secret.
class RunCache {
 public:
  static constexpr std::size_t kBuckets = std::size_t{1} << 13;
  static constexpr std::size_t kEntriesOfBucket = 8;

  RunCache() : buckets_(kBuckets) {}

  // Returns what is kept for `run`, or null if nothing is. The cache owns it; valid until Keep().
  const std::string* Find(std::string_view run) const;

  // Keeps `text` for `run`, for which nothing is kept yet. Copies `run`.
  //   Returns  the kept text. The cache owns it; valid until the next call.
  const std::string& Keep(std::string_view run, std::string text);

  // Returns the bucket of `run`, less than kBuckets.
  static std::size_t BucketOf(std::string_view run);

 private:
  struct Entry {
    std::string run;
    std::string text;
  };
  struct Bucket {
    std::vector<Entry> entries;
    std::size_t oldest = 0;  // of a full bucket: which entry is dropped next
  };

  std::vector<Bucket> buckets_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_RUN_CACHE_H_
