// SPDX-License-Identifier: GPL-3.0-or-later
// The layout of a gdbm file: the one declaration of what is known of it here.
//
// Numbers have this machine's size and byte order, and structures its alignment, as in gdbm.
#ifndef KESTAN_STORAGE_GDBM_GDBM_HEADER_H_
#define KESTAN_STORAGE_GDBM_GDBM_HEADER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestan::gdbm {

using Offset = std::uint64_t;

// At the start of the file. In the extended format, kExtensionBytes follow it; then, in both, a
// FreeList.
struct Header {
  std::uint32_t magic;
  std::int32_t block_bytes;
  Offset directory;
  std::int32_t directory_bytes;
  std::int32_t directory_bits;
  std::int32_t bucket_bytes;
  std::int32_t bucket_elements;
  Offset next_block;
};

inline constexpr std::size_t kExtensionBytes = 32;
inline constexpr std::uint32_t kMagic = 0x13579acf;
inline constexpr std::uint32_t kExtendedMagic = 0x13579ad1;
inline constexpr std::uint32_t kOldMagic = 0x13579ace;  // some hosts wrote 32-bit offsets with it

struct FreeSpace {
  std::int32_t bytes;
  Offset at;
};

// Followed by `count` FreeSpaces. `next` is where another list lies, 0 in the last.
struct FreeList {
  std::int32_t size;
  std::int32_t count;
  Offset next;
};

inline constexpr std::int32_t kNoElement = -1;  // as the hash of an unused element

// Where one record lies: its key at `data`, and its value right after the key.
struct Element {
  std::int32_t hash;
  std::array<char, 4> key_start;
  Offset data;
  std::int32_t key_bytes;
  std::int32_t value_bytes;
};

// Followed by the bucket's elements, used or not. All hashes in a bucket agree in their first
// `bits` bits; a full bucket is split into two, which have a bit more and lie elsewhere.
struct BucketHead {
  std::int32_t free_count;
  std::array<FreeSpace, 6> free;
  std::int32_t bits;
  std::int32_t count;
};

static_assert(sizeof(Header) == 40 && offsetof(Header, next_block) == 32);
static_assert(sizeof(FreeList) == 16 &&
              sizeof(FreeSpace) == sizeof(std::int32_t) + 8 + alignof(FreeSpace) - 4);
static_assert(sizeof(Element) == 24 && offsetof(Element, data) == 8);
static_assert(offsetof(BucketHead, free) == alignof(FreeSpace));
static_assert(sizeof(BucketHead) == alignof(FreeSpace) + 6 * sizeof(FreeSpace) + 8);

// What a bucket of this file takes.
struct Shape {
  std::uint32_t bucket_bytes = 512;
  std::uint32_t elements = (512 - sizeof(BucketHead)) / sizeof(Element);
};

// Returns whether a header with this magic number surely has the fields of Header, so that each can
// be believed without the rest.
inline bool HasHeaderFields(std::uint32_t magic) {
  return magic == kMagic || magic == kExtendedMagic;
}

// Reads the header of `file`, which has all bytes of a file.
//   Returns  whether it can be one: a known magic number, sizes that agree with each other, and a
//            directory that begins inside the file. Its end may be missing, as in a file cut short.
bool ReadHeader(std::string_view file, Header* header, Shape* shape);

}  // namespace kestan::gdbm

#endif  // KESTAN_STORAGE_GDBM_GDBM_HEADER_H_
