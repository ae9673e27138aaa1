// SPDX-License-Identifier: GPL-3.0-or-later
// Word lists as they are stored, built word by word.
#ifndef KESTAN_TESTS_FORMAT_WORD_ITEMS_H_
#define KESTAN_TESTS_FORMAT_WORD_ITEMS_H_

#include <string>
#include <string_view>

namespace kestan_tests {

// A word that shares its first `shared` bytes with the one before and goes on with `rest`.
inline std::string Item(int shared, std::string_view rest = "") {
  return std::string(1, static_cast<char>(128 + shared)).append(rest);
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_FORMAT_WORD_ITEMS_H_
