// SPDX-License-Identifier: GPL-3.0-or-later
// White space between words: the fixed six bytes, whatever the locale.
#ifndef KESTAN_TEXT_WHITE_SPACE_H_
#define KESTAN_TEXT_WHITE_SPACE_H_

namespace kestan {

inline bool IsWhiteSpace(char byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

}  // namespace kestan

#endif  // KESTAN_TEXT_WHITE_SPACE_H_
