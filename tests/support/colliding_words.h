// SPDX-License-Identifier: GPL-3.0-or-later
// Words made to share the places of a hash table.
#ifndef KESTAN_TESTS_SUPPORT_COLLIDING_WORDS_H_
#define KESTAN_TESTS_SUPPORT_COLLIDING_WORDS_H_

#include <kestan/storage/hash.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kestan_tests {

// The words of eight letters, a to z, one after the other.
inline std::string NumberedWord(std::uint64_t number) {
  std::string word(8, 'a');
  for (char& letter : word) {
    letter = static_cast<char>('a' + number % 26);
    number /= 26;
  }
  return word;
}

// A hash without a secret, which takes a word eight bytes at a time: anybody can choose words for
// it.
inline std::uint32_t PlainHash(const std::string& word) {
  constexpr std::uint64_t kMultiplier = 0x9e3779b97f4a7c15;
  std::uint64_t hash = word.size();
  for (std::size_t at = 0; at < word.size(); at += 8) {
    std::uint64_t step = 0;
    std::memcpy(&step, word.data() + at, std::min<std::size_t>(word.size() - at, 8));
    hash = (hash ^ step) * kMultiplier;
    hash ^= hash >> 32;
  }
  return static_cast<std::uint32_t>(hash * kMultiplier >> 32);
}

inline bool CanBeInAWord(const std::string& bytes) {
  for (const char byte : bytes) {
    if (byte == '\0' || byte == ' ' || (byte >= '\t' && byte <= '\r')) return false;
  }
  return true;
}

// Returns `count` words of sixteen bytes that all have one PlainHash: whatever the first eight
// bytes make of its state, the other eight take back.
inline std::vector<std::string> WordsOfOnePlainHash(std::size_t count) {
  constexpr std::uint64_t kMultiplier = 0x9e3779b97f4a7c15;
  std::vector<std::string> words;
  for (std::uint64_t i = 0; words.size() < count; ++i) {
    std::string word = NumberedWord(i);
    std::uint64_t step = 0;
    std::memcpy(&step, word.data(), sizeof step);
    std::uint64_t state = (16 ^ step) * kMultiplier;
    state ^= state >> 32;
    const std::uint64_t rest = state ^ 0x5a5a5a5a5a5a5a5a;
    word.append(reinterpret_cast<const char*>(&rest), sizeof rest);
    if (CanBeInAWord(word)) words.push_back(word);
  }
  return words;
}

// Returns as many words of the same length without anything in common.
inline std::vector<std::string> UnrelatedWords(std::size_t count) {
  std::vector<std::string> words;
  for (std::uint64_t i = 0; i < count; ++i) {
    words.push_back(NumberedWord(i) + NumberedWord(i * 0x9e3779b97f4a7c15 >> 27));
  }
  return words;
}

inline std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += word + " ";
  return text;
}

// Returns two words that begin with `start`, and that `hasher` gives one hash.
inline std::pair<std::string, std::string> PairOfOneHash(const kestan::Hasher& hasher,
                                                         const std::string& start) {
  std::unordered_map<std::uint32_t, std::string> known;
  for (std::uint64_t i = 0;; ++i) {
    const std::string word = start + NumberedWord(i);
    const auto [other, is_new] = known.emplace(hasher(word), word);
    if (!is_new) return {other->second, word};
  }
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SUPPORT_COLLIDING_WORDS_H_
