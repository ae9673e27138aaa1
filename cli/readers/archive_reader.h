// SPDX-License-Identifier: GPL-3.0-or-later
// Reads archives with libarchive.
#ifndef KESTAN_CLI_READERS_ARCHIVE_READER_H_
#define KESTAN_CLI_READERS_ARCHIVE_READER_H_

#include <cstddef>

#include "cli/readers/readers.h"

namespace kestan_cli {

// As Readers::read_zip.
ReadStatus ReadZip(const char* bytes, std::size_t size, const MemberEvents& events,
                   ReadProblem* problem) noexcept;

// As Readers::read_archive.
ReadStatus ReadArchive(const ArchiveSource& source, unsigned long long max_bytes,
                       const ArchiveEvents& events, ReadProblem* problem) noexcept;

}  // namespace kestan_cli

#endif  // KESTAN_CLI_READERS_ARCHIVE_READER_H_
