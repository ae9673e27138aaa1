// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/checksum/crc64.h>

#include <kestan/storage/checksum/crc64_folding.h>
#include <kestan/storage/checksum/crc64_tables.h>

#include <endian.h>

#include <climits>
#include <cstring>

namespace kestan {
namespace {

constexpr Crc64Tables kTables = MakeCrc64Tables();

std::uint64_t LoadEight(const char* bytes) {
  std::uint64_t number;
  std::memcpy(&number, bytes, sizeof number);
  return le64toh(number);
}

// Returns the remainder of eight bytes that are followed by `kAfter` other bytes.
template <std::size_t kAfter>
std::uint64_t RemainderOf(std::uint64_t eight) {
  const auto byte = [eight](unsigned index) {
    return static_cast<std::uint8_t>(eight >> CHAR_BIT * index);
  };
  return kTables[kAfter + 7][byte(0)] ^ kTables[kAfter + 6][byte(1)] ^
         kTables[kAfter + 5][byte(2)] ^ kTables[kAfter + 4][byte(3)] ^
         kTables[kAfter + 3][byte(4)] ^ kTables[kAfter + 2][byte(5)] ^
         kTables[kAfter + 1][byte(6)] ^ kTables[kAfter][byte(7)];
}

// Takes as many bytes off the front of `*bytes` as can be folded.
//   Returns  the register after them.
std::uint64_t TakeFolded(std::uint64_t state, std::string_view* bytes) {
  const std::size_t size = bytes->size() / kCrc64FoldStep * kCrc64FoldStep;
  const auto [first, last] = FoldCrc64(state, bytes->data(), size);
  bytes->remove_prefix(size);
  return RemainderOf<8>(first) ^ RemainderOf<0>(last);
}

}  // namespace

// The tables of a step do not wait for each other, as byte after byte would.
void Crc64::Add(std::string_view bytes) {
  static const bool can_fold = CanFoldCrc64();
  std::uint64_t state = register_;
  if (can_fold && bytes.size() >= kCrc64FoldsFrom) state = TakeFolded(state, &bytes);
  const char* next = bytes.data();
  std::size_t left = bytes.size();
  for (; left >= kCrc64Step; left -= kCrc64Step, next += kCrc64Step) {
    state = RemainderOf<8>(state ^ LoadEight(next)) ^ RemainderOf<0>(LoadEight(next + 8));
  }
  for (; left != 0; --left, ++next) {
    state = kTables[0][(state ^ static_cast<unsigned char>(*next)) & 0xff] ^ state >> 8;
  }
  register_ = state;
}

}  // namespace kestan
