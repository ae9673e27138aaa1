// SPDX-License-Identifier: GPL-3.0-or-later
// gdbm's hash of a key.
#ifndef KESTAN_STORAGE_GDBM_GDBM_HASH_H_
#define KESTAN_STORAGE_GDBM_GDBM_HASH_H_

#include <cstdint>
#include <string_view>

namespace kestan::gdbm {

using Hash = std::uint32_t;

inline constexpr unsigned kHashBits = 31;

// Returns gdbm's hash of a key. Its first bits choose the bucket.
Hash HashOf(std::string_view key);

// Returns the first `bits` bits of `hash`.
inline Hash PrefixOf(Hash hash, unsigned bits) {
  return bits == 0 ? 0 : hash >> (kHashBits - bits);
}

}  // namespace kestan::gdbm

#endif  // KESTAN_STORAGE_GDBM_GDBM_HASH_H_
