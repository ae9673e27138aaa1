// SPDX-License-Identifier: GPL-3.0-or-later
// Hashing of words and keys, for tables of what strangers wrote.
#ifndef KESTAN_STORAGE_HASH_H_
#define KESTAN_STORAGE_HASH_H_

#include <kestan/storage/export.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace kestan {

// A hash that depends on a secret. Whoever chooses the words of a document cannot make many of them
// share a place in a table without knowing it. Only the order of a table may follow from a hash,
// never a byte of a file or an answer: the secret is another one in each process. It fits the
// tables of the standard library: std::unordered_set<std::string, kestan::Hasher>.
//
// Sixteen bytes at a time are joined with the secret and multiplied. Every factor holds a secret
// word, so that nobody can make one of them 0 and lose the other, or find two products that agree.
class KESTAN_EXPORT Hasher {
 public:
  using Secret = std::array<std::uint64_t, 4>;

  // Hashes with the secret of the process.
  Hasher() : Hasher(ProcessSecret()) {}
  explicit Hasher(const Secret& secret) : secret_(secret) {}

  std::uint32_t operator()(std::string_view bytes) const {
    const char* next = bytes.data();
    std::size_t left = bytes.size();
    std::uint64_t state = secret_[0];
    for (; left > kStepBytes; left -= kStepBytes, next += kStepBytes) {
      state = Product(Load<std::uint64_t>(next) ^ secret_[1],
                      Load<std::uint64_t>(next + kStepBytes / 2) ^ state);
    }
    const Step last = LastStep(next, left);
    const std::uint64_t product = Product(last.low ^ secret_[1], last.high ^ state);
    return static_cast<std::uint32_t>(Product(product ^ secret_[2], bytes.size() ^ secret_[3]));
  }

  // Returns a secret that nobody knows: random bytes of the system or, where it has none, what else
  // differs from process to process. A process draws once.
  static Secret DrawSecret();

 private:
  static constexpr std::size_t kStepBytes = 16;

  struct Step {
    std::uint64_t low;
    std::uint64_t high;
  };

  static const Secret& ProcessSecret();

  template <typename T>
  static std::uint64_t Load(const char* from) {
    T bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return bytes;
  }

  // All of `size` bytes, at most sixteen. Loads overlap rather than depend on each size: the size
  // itself tells apart what would look the same.
  static Step LastStep(const char* from, std::size_t size) {
    const char* const end = from + size;
    if (size >= 8) return {Load<std::uint64_t>(from), Load<std::uint64_t>(end - 8)};
    if (size >= 4) return {Load<std::uint32_t>(from), Load<std::uint32_t>(end - 4)};
    if (size == 0) return {0, 0};
    return {Load<std::uint8_t>(from) | Load<std::uint8_t>(from + size / 2) << 8,
            Load<std::uint8_t>(end - 1)};
  }

  // Both halves of the product, folded into one.
  static std::uint64_t Product(std::uint64_t left, std::uint64_t right) {
#ifdef __SIZEOF_INT128__
    __extension__ using Wide = unsigned __int128;
    const Wide product = Wide{left} * right;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
#else
    const std::uint64_t low = Low(left) * Low(right);
    const std::uint64_t cross = High(left) * Low(right) + High(low);
    const std::uint64_t other = Low(left) * High(right) + Low(cross);
    const std::uint64_t high = High(left) * High(right) + High(cross) + High(other);
    return (other << 32 | Low(low)) ^ high;
#endif
  }

  static std::uint64_t Low(std::uint64_t number) { return static_cast<std::uint32_t>(number); }
  static std::uint64_t High(std::uint64_t number) { return number >> 32; }

  Secret secret_;
};

}  // namespace kestan

#endif  // KESTAN_STORAGE_HASH_H_
