// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/run_cache.h"

#include <functional>
#include <utility>

namespace kestan::search {

const std::string* RunCache::Find(std::string_view run) const {
  for (const Entry& entry : buckets_[BucketOf(run)].entries) {
    if (entry.run == run) return &entry.text;
  }
  return nullptr;
}

const std::string& RunCache::Keep(std::string_view run, std::string text) {
  Bucket& bucket = buckets_[BucketOf(run)];
  if (bucket.entries.size() < kEntriesOfBucket) {
    return bucket.entries.emplace_back(Entry{std::string(run), std::move(text)}).text;
  }
  Entry& entry = bucket.entries[bucket.oldest];
  bucket.oldest = (bucket.oldest + 1) % kEntriesOfBucket;
  entry = {std::string(run), std::move(text)};
  return entry.text;
}

std::size_t RunCache::BucketOf(std::string_view run) {
  return std::hash<std::string_view>()(run) % kBuckets;
}

}  // namespace kestan::search
