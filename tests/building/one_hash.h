// SPDX-License-Identifier: GPL-3.0-or-later
// Keys that gdbm gives one hash.
#ifndef KESTAN_TESTS_BUILDING_ONE_HASH_H_
#define KESTAN_TESTS_BUILDING_ONE_HASH_H_

#include <cstddef>
#include <string>
#include <vector>

namespace kestan_tests {

// Returns `count` keys of one length and one hash, at most 65536. gdbm adds up the bytes of a key,
// each shifted by five bits more than the one before it, until the sixth starts over: "Ab" and "aa"
// make the same sum at the first and at the third of each five bytes.
inline std::vector<std::string> KeysOfOneHash(std::size_t count) {
  std::vector<std::string> keys;
  for (std::size_t number = 0; number < count; ++number) {
    std::string key;
    for (unsigned bit = 0; bit < 16; ++bit) {
      key += (number >> bit & 1) != 0 ? "Ab" : "aa";
      if (bit % 2 == 1) key += 'x';
    }
    keys.push_back(key);
  }
  return keys;
}

// Returns `count` words of small letters and of one hash, at most 1048576. A byte is shifted by one
// bit more than the one five places before it: "c....a" and "a....b" make the same sum.
inline std::vector<std::string> WordsOfOneHash(std::size_t count) {
  std::vector<std::string> words;
  for (std::size_t number = 0; number < count; ++number) {
    std::string word(40, 'a');
    for (unsigned bit = 0; bit < 20; ++bit) {
      const std::size_t place = bit / 5 * 10 + bit % 5;
      if ((number >> bit & 1) != 0) {
        word[place + 5] = 'b';
      } else {
        word[place] = 'c';
      }
    }
    words.push_back(word);
  }
  return words;
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_BUILDING_ONE_HASH_H_
