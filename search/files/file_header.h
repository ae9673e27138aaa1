// SPDX-License-Identifier: GPL-3.0-or-later
// The first bytes of the binary files that stand beside an index file.
#ifndef KESTAN_SEARCH_FILES_FILE_HEADER_H_
#define KESTAN_SEARCH_FILES_FILE_HEADER_H_

#include <kestan/search/status.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestan::search {

// Eight letters that name the kind of file, and the version of its format.
constexpr std::size_t kFileHeaderBytes = 8 + 8;

// What a header must say.
struct FileKind {
  std::string_view letters;  // 8
  std::uint64_t version = 1;
  std::string_view name;  // for people: "a term dictionary"
};

std::string FileHeader(const FileKind& kind);

// Checks that `bytes`, the start of the file `file`, is the header of such a file.
//   Returns  kDamaged; kVersion for another version.
Status CheckFileHeader(std::string_view bytes, const FileKind& kind, const std::string& file);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_FILES_FILE_HEADER_H_
