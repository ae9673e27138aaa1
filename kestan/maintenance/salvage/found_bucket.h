// SPDX-License-Identifier: GPL-3.0-or-later
// A bucket of a damaged gdbm file, wherever it was found.
#ifndef KESTAN_MAINTENANCE_SALVAGE_FOUND_BUCKET_H_
#define KESTAN_MAINTENANCE_SALVAGE_FOUND_BUCKET_H_

#include <kestan/maintenance/salvage/gdbm_layout.h>

#include <cstdint>

namespace kestan::gdbm {

inline constexpr Hash kLastHash = 0x7fffffff;

// Where a bucket lies and which hashes it has.
struct FoundBucket {
  FoundBucket() = default;

  // Describes `bucket`, which was read at `place`, but for its hashes.
  FoundBucket(const Bucket& bucket, Offset place)
      : at(place),
        has_head(bucket.has_head),
        is_empty(bucket.valid.empty() && bucket.damaged.empty()),
        is_intact(bucket.IsIntact()),
        is_complete(bucket.IsComplete()) {}

  // Gives it the hashes that begin with these bits.
  void SetHashes(Hash prefix, unsigned prefix_bits) {
    bits = static_cast<std::uint8_t>(prefix_bits);
    first = prefix_bits == 0 ? 0 : prefix << (kHashBits - prefix_bits);
    last = first + (kLastHash >> prefix_bits);
  }

  Offset at = 0;
  Hash first = 0;  // the hashes from `first` to `last`
  Hash last = 0;
  std::uint8_t bits = 0;
  bool is_reached = false;   // by the directory
  bool has_head = false;     // see Bucket
  bool is_empty = false;     // no element is used
  bool is_intact = false;    // see Bucket
  bool is_complete = false;  // see Bucket
  bool is_split = false;     // buckets of its hashes with more bits are known
};

}  // namespace kestan::gdbm

#endif  // KESTAN_MAINTENANCE_SALVAGE_FOUND_BUCKET_H_
