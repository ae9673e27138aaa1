// SPDX-License-Identifier: GPL-3.0-or-later
// Memory for many small things that are freed at once.
#ifndef KESTAN_SEARCH_INDEX_INVERTING_ARENA_H_
#define KESTAN_SEARCH_INDEX_INVERTING_ARENA_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace kestan::search {

// Hands out memory by addresses of four bytes, which take half the room of pointers. Blocks are
// never moved. An address is that of a unit of four bytes; 0 is never handed out.
class Arena {
 public:
  using Address = std::uint32_t;

  static constexpr std::size_t kUnitBytes = 4;
  static constexpr std::size_t kBlockBytes = std::size_t{1} << 18;

  // Returns memory of `bytes` bytes, aligned to kUnitBytes. What does not fit into a block gets one
  // of its own. All memory together is below 16 GB, as long as no more than 1 GB is asked for.
  Address Allocate(std::size_t bytes) {
    const std::size_t units = (bytes + kUnitBytes - 1) / kUnitBytes;
    if (units > kBlockUnits - used_units_) AddBlock(units);
    const auto address = static_cast<Address>((blocks_.size() - 1) << kBlockBits | used_units_);
    used_units_ = std::min(used_units_ + units, kBlockUnits);
    return address;
  }

  // Returns the memory at `address`, which Allocate() returned. Valid as long as the arena.
  char* At(Address address) const {
    return blocks_[address >> kBlockBits].get() + (address & (kBlockUnits - 1)) * kUnitBytes;
  }

  // Returns how many bytes the blocks have.
  std::size_t memory() const { return memory_; }

 private:
  static constexpr unsigned kBlockBits = 16;
  static constexpr std::size_t kBlockUnits = std::size_t{1} << kBlockBits;
  static_assert(kBlockUnits * kUnitBytes == kBlockBytes);

  void AddBlock(std::size_t units) {
    const std::size_t skipped = blocks_.empty() ? 1 : 0;  // address 0
    const std::size_t bytes = std::max(units + skipped, kBlockUnits) * kUnitBytes;
    blocks_.emplace_back(new char[bytes]);  // not set to 0, as std::make_unique would do
    memory_ += bytes;
    used_units_ = skipped;
  }

  std::vector<std::unique_ptr<char[]>> blocks_;  // NOLINT(modernize-avoid-c-arrays): size varies
  std::size_t used_units_ = kBlockUnits;         // of the last block
  std::size_t memory_ = 0;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_INVERTING_ARENA_H_
