// SPDX-License-Identifier: GPL-3.0-or-later
// A text in a buffer of exactly the promised size, for the tests of the stripping functions.
#ifndef KESTAN_TESTS_INDEXING_STRIP_BLOCK_H_
#define KESTAN_TESTS_INDEXING_STRIP_BLOCK_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace kestan_tests {

// What a stripping function left behind.
struct Stripped {
  int length;          // what it returned
  std::string text;    // that many bytes of the buffer
  std::string buffer;  // the whole buffer
};

// Runs `strip` on a heap copy of `text` with `spare` bytes '#' after it and not one byte more, so
// that a sanitizer sees each byte written past the end.
template <typename Strip>
Stripped StripInPlace(std::string_view text, std::size_t spare, Strip strip) {
  std::vector<char> buffer(text.size() + spare, '#');
  buffer.shrink_to_fit();
  std::copy(text.begin(), text.end(), buffer.begin());
  const int length = strip(buffer.data(), static_cast<unsigned>(text.size()));
  const std::string whole(buffer.begin(), buffer.end());
  EXPECT_GE(length, 0);
  EXPECT_LE(static_cast<std::size_t>(length), whole.size());
  return {length, whole.substr(0, static_cast<std::size_t>(length)), whole};
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_INDEXING_STRIP_BLOCK_H_
