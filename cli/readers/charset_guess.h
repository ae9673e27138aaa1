// SPDX-License-Identifier: GPL-3.0-or-later
// Guesses character sets with ICU.
#ifndef KESTAN_CLI_READERS_CHARSET_GUESS_H_
#define KESTAN_CLI_READERS_CHARSET_GUESS_H_

#include <cstddef>

#include "cli/readers/readers.h"

namespace kestan_cli {

// As Readers::guess_charset.
ReadStatus GuessCharset(const char* bytes, std::size_t size, CharsetGuess* guess) noexcept;

}  // namespace kestan_cli

#endif  // KESTAN_CLI_READERS_CHARSET_GUESS_H_
