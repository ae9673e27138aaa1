// Keys that gdbm gives one hash.
#ifndef KESTAN_TESTS_BUILDING_ONE_HASH_H_
#define KESTAN_TESTS_BUILDING_ONE_HASH_H_

#include <cstddef>
#include <string>
#include <vector>

namespace kestan_tests {

// Returns `count` keys of one length and one hash, at most 65536. gdbm adds up the bytes of a key,
// each shifted by five bits more than the one before it, until the sixth begins anew: "Ab" and "aa"
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

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_BUILDING_ONE_HASH_H_
