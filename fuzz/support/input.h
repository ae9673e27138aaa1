// SPDX-License-Identifier: GPL-3.0-or-later
// A fuzzer's bytes, read as what a target needs. Bytes that are missing read as 0.
#ifndef KESTAN_FUZZ_SUPPORT_INPUT_H_
#define KESTAN_FUZZ_SUPPORT_INPUT_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestan_fuzz {

class Input {
 public:
  // Both borrow the bytes.
  explicit Input(std::string_view bytes) : left_(bytes) {}
  Input(const std::uint8_t* data, std::size_t size)
      : left_(reinterpret_cast<const char*>(data), size) {}

  bool IsEmpty() const { return left_.empty(); }

  unsigned Byte() {
    if (left_.empty()) return 0;
    const auto byte = static_cast<unsigned char>(left_.front());
    left_.remove_prefix(1);
    return byte;
  }

  // A number from 0 up to, not including, `limit`, which is at most 256.
  unsigned Below(unsigned limit) { return Byte() % limit; }

  // A little-endian number of 2 bytes.
  unsigned Unit() {
    const unsigned low = Byte();
    return low | Byte() << 8;
  }

  // The next `count` bytes, or as many as there are.
  std::string Bytes(std::size_t count) {
    const std::string bytes(left_.substr(0, count));
    left_.remove_prefix(bytes.size());
    return bytes;
  }

  // The bytes before the next NUL, which is passed too.
  std::string String() {
    const std::string bytes(left_.substr(0, left_.find('\0')));
    left_.remove_prefix(std::min(bytes.size() + 1, left_.size()));
    return bytes;
  }

  std::string Rest() { return Bytes(left_.size()); }

 private:
  std::string_view left_;
};

}  // namespace kestan_fuzz

#endif  // KESTAN_FUZZ_SUPPORT_INPUT_H_
