// SPDX-License-Identifier: GPL-3.0-or-later
// Numbers as bytes of files, little-endian on every machine, and reading them back without leaving
// the bytes.
#ifndef KESTAN_SEARCH_FILES_NUMBERS_H_
#define KESTAN_SEARCH_FILES_NUMBERS_H_

#include <endian.h>
#include <kestan/checksum.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace kestan::search {

// Appends all bytes of `number`, the lowest first.
template <typename Number>
void AppendNumber(Number number, std::string* bytes) {
  for (std::size_t i = 0; i < sizeof(Number); ++i) {
    bytes->push_back(static_cast<char>(number >> (CHAR_BIT * i) & 0xff));
  }
}

// Returns the number whose bytes begin at `bytes`; all of them must be there.
template <typename Number>
Number NumberAt(const char* bytes) {
  Number number;
  std::memcpy(&number, bytes, sizeof number);
  if constexpr (sizeof number == sizeof(std::uint16_t)) {
    return le16toh(number);
  } else if constexpr (sizeof number == sizeof(std::uint32_t)) {
    return le32toh(number);
  } else {
    static_assert(sizeof number == sizeof(std::uint64_t));
    return le64toh(number);
  }
}

// Appends `number` as a varint: seven bits a byte, the lowest first; all bytes but the last have
// their highest bit set.
inline void AppendVarint(std::uint64_t number, std::string* bytes) {
  for (; number > 0x7f; number >>= 7) bytes->push_back(static_cast<char>(number | 0x80));
  bytes->push_back(static_cast<char>(number));
}

// Make small numbers of small differences of either sign, and the other way.
inline std::uint64_t ZigZag(std::uint64_t difference) {
  return difference << 1 ^ (0 - (difference >> 63));
}
inline std::uint64_t UnZigZag(std::uint64_t number) { return number >> 1 ^ (0 - (number & 1)); }

// Takes numbers and strings off the front of bytes. After a failure its state means nothing.
class ByteReader {
 public:
  ByteReader() = default;

  // Borrows `bytes`.
  explicit ByteReader(std::string_view bytes)
      : next_(bytes.data()), end_(bytes.data() + bytes.size()) {}

  std::size_t rest() const { return static_cast<std::size_t>(end_ - next_); }

  // Takes a varint.
  //   Returns  false if it does not end, or does not fit into `*number`.
  template <typename Number>
  bool Varint(Number* number) {
    if (next_ != end_ && (*next_ & 0x80) == 0) {
      *number = static_cast<Number>(static_cast<unsigned char>(*next_++));
      return true;
    }
    std::uint64_t long_number = 0;
    if (!LongVarint(&long_number)) return false;
    *number = static_cast<Number>(long_number);
    return *number == long_number;
  }

  // Takes `size` bytes, which `*bytes` then borrows.
  //   Returns  false if there are fewer.
  bool Bytes(std::uint64_t size, std::string_view* bytes) {
    if (size > rest()) return false;
    *bytes = {next_, static_cast<std::size_t>(size)};
    next_ += static_cast<std::size_t>(size);
    return true;
  }

 private:
  bool LongVarint(std::uint64_t* number) {
    for (unsigned shift = 0; next_ != end_ && shift < 64; shift += 7) {
      const std::uint64_t byte = static_cast<unsigned char>(*next_++);
      const std::uint64_t bits = byte & 0x7f;
      if (bits << shift >> shift != bits) return false;
      *number |= bits << shift;
      if (byte == bits) return true;
    }
    return false;
  }

  const char* next_ = nullptr;
  const char* end_ = nullptr;
};

// Returns the checksum of `bytes`.
inline std::uint64_t ChecksumOf(std::string_view bytes) {
  Crc64 checksum;
  checksum.Add(bytes);
  return checksum.Value();
}

// Appends the checksum of `checked`, the highest byte first: with the lowest first, all files of
// one size that end in a checksum of themselves would have the same checksum as a whole.
inline void AppendChecksumOf(std::string_view checked, std::string* bytes) {
  const std::uint64_t checksum = ChecksumOf(checked);
  for (int shift = 56; shift >= 0; shift -= CHAR_BIT) {
    bytes->push_back(static_cast<char>(checksum >> shift & 0xff));
  }
}

// Returns whether AppendChecksumOf() made the bytes at `stored` of `checked`.
inline bool IsChecksumOf(std::string_view checked, const char* stored) {
  std::uint64_t checksum = 0;
  for (std::size_t i = 0; i < sizeof checksum; ++i) {
    checksum = checksum << CHAR_BIT | static_cast<unsigned char>(stored[i]);
  }
  return ChecksumOf(checked) == checksum;
}

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_FILES_NUMBERS_H_
