// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/files/file_header.h"

#include "search/files/numbers.h"

namespace kestan::search {

std::string FileHeader(const FileKind& kind) {
  std::string bytes(kind.letters);
  AppendNumber(kind.version, &bytes);
  return bytes;
}

Status CheckFileHeader(std::string_view bytes, const FileKind& kind, const std::string& file) {
  if (bytes.size() < kFileHeaderBytes || bytes.substr(0, kind.letters.size()) != kind.letters) {
    return {StatusCode::kDamaged, "it is not " + std::string(kind.name), file};
  }
  const auto version = NumberAt<std::uint64_t>(bytes.data() + kind.letters.size());
  if (version == kind.version) return {};
  return {StatusCode::kVersion,
          "it is " + std::string(kind.name) + " of version " + std::to_string(version) +
              ", and this program reads version " + std::to_string(kind.version),
          file};
}

}  // namespace kestan::search
