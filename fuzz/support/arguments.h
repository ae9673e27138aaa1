// SPDX-License-Identifier: GPL-3.0-or-later
// What a call of the engine is given, read from a fuzzer's bytes: often what such calls have in
// common, so that they meet the same records, and now and then anything.
#ifndef KESTAN_FUZZ_SUPPORT_ARGUMENTS_H_
#define KESTAN_FUZZ_SUPPORT_ARGUMENTS_H_

#include <array>
#include <climits>
#include <cmath>
#include <cstdint>
#include <string>

#include "fuzz/support/input.h"
#include "tests/support/index_test.h"

namespace kestan_fuzz {

// One of `known`, or any few bytes that a C string can hold.
template <std::size_t kCount>
inline std::string OneOf(const std::array<const char*, kCount>& known, Input* input) {
  const unsigned choice = input->Byte();
  if (choice < 224) return known[choice % kCount];
  std::string bytes = input->Bytes(choice - 223);
  return bytes.substr(0, bytes.find('\0'));
}

inline std::string Name(Input* input) {
  static constexpr std::array<const char*, 8> kNames = {"a", "b",       "c", "",
                                                        "A", "one two", "-", "code"};
  return OneOf(kNames, input);
}

inline std::string Word(Input* input) {
  static constexpr std::array<const char*, 16> kWords = {
      "cat", "Cat", "dog", "a", "I",      "at",      "caf\xc3\xa9", "under_score",
      "x-",  "d-",  "d-a", "-", "g-code", "g-avail", "g-deleted",   "w-a"};
  return OneOf(kWords, input);
}

// A text of at most 15 words, or one long word many times.
inline std::string Words(Input* input) {
  static constexpr std::array<const char*, 4> kSeparators = {" ", "\n", "  ", "\t\v\f\r"};
  const unsigned count = input->Byte();
  std::string text;
  if (count >= 248) {
    const std::size_t length = input->Byte() + 1;
    for (unsigned i = 0; i < count - 240; ++i) {
      text += std::string(length, 'w') + std::to_string(i) + " ";
    }
    return text;
  }
  for (unsigned i = 0; i < count % 16; ++i) {
    text += Word(input);
    text += kSeparators[input->Below(256) / 64];
  }
  return text;
}

inline int Distance(Input* input) {
  static constexpr std::array<int, 8> kUnusual = {INT_MAX, 65535, 21, 20, 19, -1, -20, INT_MIN};
  const unsigned choice = input->Byte();
  return choice < 248 ? static_cast<int>(choice % 8) : kUnusual[choice - 248];
}

inline double Bound(Input* input) {
  static const std::array<double, 16> kBounds = {
      0.0, 0.25, 0.5,     0.999, 1.0,          2.0,  2.9999,   3.0,
      5.0, -0.5, -1.0005, -2.0,  4294967296.0, 1e19, HUGE_VAL, std::nan("")};
  return kBounds[input->Below(kBounds.size())];
}

inline std::uint64_t Flags(Input* input) {
  static constexpr std::array<std::uint64_t, 8> kFlags = {1, 2, 4, 0, 5, 6, 0x80000000, 1ull << 32};
  return kFlags[input->Below(kFlags.size())];
}

inline const char* File(Input* input) {
  static constexpr std::array<const char*, 4> kFiles = {"index", "index", "copy", "missing/index"};
  return kFiles[input->Below(kFiles.size())];
}

// A counter that is neither small nor nearly full tests nothing new and makes sets of thousands
// of documents, which take the model seconds.
inline std::string TamedCounter(std::string record) {
  if (record.size() > 1) record[1] = '\0';
  return record;
}

// Any bytes under the key of a record that the engine reads.
inline kestan_tests::Records Record(Input* input) {
  constexpr unsigned kLongestRecord = 128;
  static const std::array<std::string, 16> kKeys = {"cat",
                                                    "dog",
                                                    "a",
                                                    "d-",
                                                    "g-deleted",
                                                    "g-avail",
                                                    "g-code",
                                                    "g-opts",
                                                    "d-a",
                                                    "d-b",
                                                    std::string("c-\1\0", 4),
                                                    std::string("c-\2\0", 4),
                                                    std::string("c-\3\0", 4),
                                                    std::string("c-\0\0", 4),
                                                    "w-a",
                                                    "t-a"};
  const std::string& key = kKeys[input->Below(kKeys.size())];
  std::string record = input->Bytes(input->Below(kLongestRecord));
  if (key == "g-code") record = TamedCounter(record);
  return {{key, record}};
}

}  // namespace kestan_fuzz

#endif  // KESTAN_FUZZ_SUPPORT_ARGUMENTS_H_
