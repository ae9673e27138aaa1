// SPDX-License-Identifier: GPL-3.0-or-later
// Decodes character sets with ICU.
#ifndef KESTAN_CLI_READERS_CHARSET_DECODER_H_
#define KESTAN_CLI_READERS_CHARSET_DECODER_H_

#include <cstddef>

#include "cli/readers/readers.h"

namespace kestan_cli {

// As Readers::examine_charset.
CharsetKind ExamineCharset(const char* name) noexcept;

// As Readers::decode_charset.
ReadStatus DecodeCharset(const char* name, const char* bytes, std::size_t size,
                         const Utf16Sink& sink, bool* is_faulty) noexcept;

}  // namespace kestan_cli

#endif  // KESTAN_CLI_READERS_CHARSET_DECODER_H_
