// SPDX-License-Identifier: GPL-3.0-or-later
// The sets of bytes in patterns: [a-z], [!0-9], [[:alpha:]_].
#ifndef KESTAN_CLI_FILES_IGNORE_BYTE_SET_H_
#define KESTAN_CLI_FILES_IGNORE_BYTE_SET_H_

#include <bitset>
#include <cstddef>
#include <string_view>

namespace kestan_cli {

using ByteSet = std::bitset<256>;

// Reads the set that `text` begins with, its bracket included. A "]" that comes first is one of the
// bytes, a backslash takes the next byte as it is. No set has "/".
//   Returns  how many bytes of `text` it takes; 0 if it is not closed or names an unknown class.
std::size_t ReadByteSet(std::string_view text, ByteSet* set);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_IGNORE_BYTE_SET_H_
