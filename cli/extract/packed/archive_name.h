// SPDX-License-Identifier: GPL-3.0-or-later
// Archives, by their names and their first bytes.
#ifndef KESTAN_CLI_EXTRACT_PACKED_ARCHIVE_NAME_H_
#define KESTAN_CLI_EXTRACT_PACKED_ARCHIVE_NAME_H_

#include <string_view>

namespace kestan_cli {

// Returns whether the file `name`, which begins with `head`, is an archive of other files: .zip,
// .jar and others of that format, or .tar, which may be compressed (.tar.gz, .tgz). Office
// documents are none.
bool IsArchive(std::string_view name, std::string_view head);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_PACKED_ARCHIVE_NAME_H_
