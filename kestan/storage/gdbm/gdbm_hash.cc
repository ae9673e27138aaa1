// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/gdbm/gdbm_hash.h>

namespace kestan::gdbm {

Hash HashOf(std::string_view key) {
  constexpr Hash kMask = 0x7fffffff;
  constexpr unsigned kShifts = 24;
  Hash hash = 0x238f13afU * static_cast<Hash>(key.size());
  unsigned shift = 0;
  for (const char byte : key) {
    hash += static_cast<Hash>(static_cast<int>(byte)) << shift;  // sign and all, as gdbm has it
    shift += 5;
    if (shift >= kShifts) shift -= kShifts;
  }
  return (1103515243U * (hash & kMask) + 12345U) & kMask;
}

}  // namespace kestan::gdbm
