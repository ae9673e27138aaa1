// SPDX-License-Identifier: GPL-3.0-or-later
// Checksums of long strings by carry-less multiplication, where the processor has it.
#ifndef KESTAN_STORAGE_CHECKSUM_CRC64_FOLDING_H_
#define KESTAN_STORAGE_CHECKSUM_CRC64_FOLDING_H_

#include <array>
#include <cstddef>
#include <cstdint>

namespace kestan {

inline constexpr std::size_t kCrc64FoldStep = 64;  // bytes that are taken in one step
inline constexpr std::size_t kCrc64FoldsFrom = 2 * kCrc64FoldStep;  // fewer are not worth it

// Returns whether this processor can fold.
bool CanFoldCrc64();

// Folds `size` bytes, a multiple of kCrc64FoldStep and not 0, into 16.
//   Returns  these 16 as two little-endian numbers. From a register of 0 on, they lead to the same
//            register as the bytes do from `state` on.
std::array<std::uint64_t, 2> FoldCrc64(std::uint64_t state, const char* bytes, std::size_t size);

}  // namespace kestan

#endif  // KESTAN_STORAGE_CHECKSUM_CRC64_FOLDING_H_
