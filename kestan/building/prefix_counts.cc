// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/building/prefix_counts.h>

#include <limits>

namespace kestan::gdbm {
namespace {

Hash HashOf(const Element& element) { return static_cast<Hash>(element.hash); }

}  // namespace

bool PrefixCounts::IsFullAmongMany(Hash hash, const Vector<Element>& elements) {
  if (cells_.empty()) cells_.resize(std::size_t{1} << kCellBits);
  for (; counted_ < elements.size(); ++counted_) Count(HashOf(elements[counted_]));
  const Hash cell_prefix = PrefixOf(hash, kCellBits);
  Cell& cell = cells_[cell_prefix];
  if (cell.keys < kMostKeysOfOnePrefix) return false;
  if (cell.counts == 0) CountByAllBits(cell_prefix, elements);
  const Hash rest = PrefixOf(hash, kMostDirectoryBits) & ((1U << kRestBits) - 1);
  return counts_[cell.counts - 1U][rest] >= kMostKeysOfOnePrefix;
}

void PrefixCounts::Count(Hash hash) {
  Cell& cell = cells_[PrefixOf(hash, kCellBits)];
  if (cell.keys < std::numeric_limits<std::uint16_t>::max()) ++cell.keys;
  if (cell.counts == 0) return;
  ++counts_[cell.counts - 1U][PrefixOf(hash, kMostDirectoryBits) & ((1U << kRestBits) - 1)];
}

// Counts all elements again that begin with these bits; later ones are counted as they come.
void PrefixCounts::CountByAllBits(Hash cell_prefix, const Vector<Element>& elements) {
  counts_.emplace_back(Counts{});
  cells_[cell_prefix].counts = static_cast<std::uint16_t>(counts_.size());
  for (const Element& element : elements) {
    const Hash hash = HashOf(element);
    if (PrefixOf(hash, kCellBits) != cell_prefix) continue;
    ++counts_.back()[PrefixOf(hash, kMostDirectoryBits) & ((1U << kRestBits) - 1)];
  }
}

}  // namespace kestan::gdbm
