// SPDX-License-Identifier: GPL-3.0-or-later
// Compressed files, by their names and their first bytes.
#ifndef KESTAN_CLI_EXTRACT_PACKED_COMPRESSED_NAME_H_
#define KESTAN_CLI_EXTRACT_PACKED_COMPRESSED_NAME_H_

#include <string>
#include <string_view>

namespace kestan_cli {

// How often a file may be compressed: "x.gz.xz" is twice.
constexpr int kMaxLayers = 3;

// Returns whether the file `name`, which begins with `head`, was written by gzip, bzip2, xz or
// zstd: by its extension and its first bytes.
bool IsCompressed(std::string_view name, std::string_view head);

// Returns `name` without the extensions of compression: "x.html" for "x.html.gz".
std::string UnpackedName(std::string name);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_PACKED_COMPRESSED_NAME_H_
