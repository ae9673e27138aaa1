// SPDX-License-Identifier: GPL-3.0-or-later
// How the records of a new gdbm file are spread over buckets.
#ifndef KESTAN_BUILDING_BUCKET_PLAN_H_
#define KESTAN_BUILDING_BUCKET_PLAN_H_

#include <kestan/storage/gdbm/gdbm_hash.h>
#include <kestan/storage/gdbm/gdbm_header.h>
#include <kestan/storage/memory/memory.h>

#include <cstddef>
#include <cstdint>

namespace kestan::gdbm {

// The block size of new files. The header takes one block; buckets may be larger than it.
inline constexpr std::uint32_t kBlockBytes = 512;

// Returns how many bytes a bucket takes that has room for `capacity` elements. gdbm takes free
// space that begins within so many bytes of the start of the file for damage: what may become free
// lies behind them.
constexpr std::uint64_t BucketBytes(std::uint32_t capacity) {
  return sizeof(BucketHead) + std::uint64_t{capacity} * sizeof(Element);
}

// No directory of a new file has more bits, and no bucket more room.
inline constexpr unsigned kMostDirectoryBits = 24;
inline constexpr std::uint32_t kMostCapacity = ((1 << 20) - sizeof(BucketHead)) / sizeof(Element);

// Keys whose hashes begin with the same kMostDirectoryBits bits are in one bucket, and gdbm looks
// at one after the other. Words that nobody has chosen for that come nowhere near so many.
inline constexpr std::uint32_t kMostKeysOfOnePrefix = 4096;
static_assert(kMostKeysOfOnePrefix < kMostCapacity / 8);

// Returns the largest capacity that pays in a file of about so many records; 0 if that is not
// known. Large buckets are filled more evenly, but the start of the file that they leave unused is
// as large as one of them.
std::uint32_t LargestCapacity(std::size_t expected_records);

// Elements of a bucket, by their indexes. All of them agree in their first `bits` bits.
struct PlannedBucket {
  unsigned bits = 0;
  std::size_t first = 0;
  std::size_t end = 0;
};

struct BucketPlan {
  std::uint64_t bucket_bytes() const { return BucketBytes(capacity); }
  std::uint64_t directory_bytes() const { return std::uint64_t{sizeof(Offset)} << directory_bits; }

  std::uint32_t capacity = 0;  // how many elements a bucket has room for
  unsigned directory_bits = 0;
  Vector<PlannedBucket> buckets;  // in order of their hashes
};

// Sorts elements by their hashes, and those of one hash by their places.
void SortByHash(Vector<Element>* elements);

// Plans the buckets of `elements`, which are in order of their hashes. The capacity is one with
// which directory and buckets take the fewest bytes. Beyond `largest` it goes only where many
// hashes begin with the same bits, which more and more splits would not part.
//   Returns  whether there is such a capacity: not if a bucket of a megabyte cannot hold all keys
//            of one hash.
bool PlanBuckets(const Vector<Element>& elements, std::uint32_t largest, BucketPlan* plan);

}  // namespace kestan::gdbm

#endif  // KESTAN_BUILDING_BUCKET_PLAN_H_
