// Hashing of words and keys.
#ifndef KESTAN_STORAGE_HASH_H_
#define KESTAN_STORAGE_HASH_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace kestan {

// Hashes eight bytes at a time; most words need one or two steps.
inline std::uint32_t Hash(std::string_view bytes) {
  constexpr std::uint64_t kMultiplier = 0x9e3779b97f4a7c15;  // 2^64 over the golden ratio
  constexpr std::size_t kStepBytes = sizeof(std::uint64_t);
  std::uint64_t hash = bytes.size();
  const char* next = bytes.data();
  for (std::size_t left = bytes.size(); left > 0;) {
    const std::size_t taken = left < kStepBytes ? left : kStepBytes;
    std::uint64_t step = 0;
    std::memcpy(&step, next, taken);
    hash = (hash ^ step) * kMultiplier;
    hash ^= hash >> 32;
    next += taken;
    left -= taken;
  }
  return static_cast<std::uint32_t>(hash * kMultiplier >> 32);
}

}  // namespace kestan

#endif  // KESTAN_STORAGE_HASH_H_
