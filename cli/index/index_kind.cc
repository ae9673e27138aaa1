// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/index/index_kind.h"

#include <filesystem>
#include <system_error>

#include "cli/index/index_errors.h"

namespace kestan_cli {

namespace fs = std::filesystem;

IndexKind KindOfIndex(const std::string& path) {
  std::error_code error;
  const fs::file_type type = fs::status(path, error).type();
  switch (type) {
    case fs::file_type::directory:
      return IndexKind::kFolder;
    case fs::file_type::regular:
      return IndexKind::kFile;
    case fs::file_type::not_found:
      return IndexKind::kNone;
    default:
      throw CannotOpen(path, error ? ReasonOf(error.value()) : "not an index");
  }
}

void CheckIsFolder(const std::string& path) {
  switch (KindOfIndex(path)) {
    case IndexKind::kFolder:
      return;
    case IndexKind::kNone:
      throw CannotOpen(path, kNoSuchIndex);
    case IndexKind::kFile:
      throw CannotChange(path, kOneFileIsReadOnly);
  }
}

}  // namespace kestan_cli
