// SPDX-License-Identifier: GPL-3.0-or-later
// How many keys of a file have hashes that begin with the same bits.
#ifndef KESTAN_BUILDING_PREFIX_COUNTS_H_
#define KESTAN_BUILDING_PREFIX_COUNTS_H_

#include <kestan/building/bucket_plan.h>
#include <kestan/storage/gdbm/gdbm_hash.h>
#include <kestan/storage/gdbm/gdbm_header.h>
#include <kestan/storage/memory/memory.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace kestan::gdbm {

// Says when kMostKeysOfOnePrefix keys have hashes that begin with the same kMostDirectoryBits bits.
// Files of fewer keys cost nothing. In others, keys are counted by fewer bits, a few nanoseconds a
// key and 256 KB, and by all bits only where so many begin with these.
class PrefixCounts {
 public:
  // Returns whether no further key with the prefix of `hash` fits. `elements` are those of the file
  // so far: what they were in earlier calls, and those that came since.
  bool IsFull(Hash hash, const Vector<Element>& elements) {
    return elements.size() >= kMostKeysOfOnePrefix && IsFullAmongMany(hash, elements);
  }

 private:
  static constexpr unsigned kCellBits = 16;
  static constexpr unsigned kRestBits = kMostDirectoryBits - kCellBits;

  // How many keys have a prefix of kCellBits bits, and where they are counted by the bits after it.
  struct Cell {
    std::uint16_t keys = 0;    // stays at 65,535
    std::uint16_t counts = 0;  // one more than the index in counts_; 0: nowhere
  };
  using Counts = std::array<std::uint32_t, std::size_t{1} << kRestBits>;

  bool IsFullAmongMany(Hash hash, const Vector<Element>& elements);
  void Count(Hash hash);
  void CountByAllBits(Hash cell_prefix, const Vector<Element>& elements);

  std::size_t counted_ = 0;  // of the elements
  Vector<Cell> cells_;
  Vector<Counts> counts_;
};

}  // namespace kestan::gdbm

#endif  // KESTAN_BUILDING_PREFIX_COUNTS_H_
