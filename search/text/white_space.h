// SPDX-License-Identifier: GPL-3.0-or-later
// The white space and the control characters of ASCII.
#ifndef KESTAN_SEARCH_TEXT_WHITE_SPACE_H_
#define KESTAN_SEARCH_TEXT_WHITE_SPACE_H_

#include <string_view>

namespace kestan::search {

constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

inline bool IsWhiteSpace(char byte) { return kWhiteSpace.find(byte) != std::string_view::npos; }

inline bool IsBlankOrControl(char byte) {
  return static_cast<unsigned char>(byte) <= ' ' || byte == '\x7f';
}

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_WHITE_SPACE_H_
