// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/name_filter.h"

namespace kestan::search {

// At least 16 bits a name: one foreign name in 70 or fewer passes.
void NameFilter::Fill(const DocumentTable& table) {
  std::size_t bits = 64;
  while (bits < table.size() * 16) bits *= 2;
  bits_.resize(bits);
  mask_ = bits - 1;
  for (std::size_t code = 1; code <= table.size(); ++code) {
    const std::uint64_t hash = std::hash<std::string_view>()(table.NameOf(static_cast<Code>(code)));
    bits_[static_cast<std::size_t>(hash & mask_)] = true;
    bits_[static_cast<std::size_t>(SecondHash(hash) & mask_)] = true;
  }
}

}  // namespace kestan::search
