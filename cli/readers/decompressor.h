// SPDX-License-Identifier: GPL-3.0-or-later
// Decompresses files with libarchive.
#ifndef KESTAN_CLI_READERS_DECOMPRESSOR_H_
#define KESTAN_CLI_READERS_DECOMPRESSOR_H_

#include "cli/readers/readers.h"

namespace kestan_cli {

// As Readers::decompress.
ReadStatus Decompress(const ByteSource& source, const ByteSink& sink, int max_layers,
                      ReadProblem* problem) noexcept;

}  // namespace kestan_cli

#endif  // KESTAN_CLI_READERS_DECOMPRESSOR_H_
