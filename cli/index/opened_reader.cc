// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/index/opened_reader.h"

#include "cli/index/index_errors.h"
#include "cli/index/index_kind.h"

namespace kestan_cli {
namespace {

using kestan::search::IndexReader;

// Returns which of `paths` an error about `file` is about; the first if it is not clear.
const std::string& IndexOf(const std::string& file, const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    if (file == path || file.compare(0, path.size() + 1, path + "/") == 0) return path;
  }
  return paths.front();
}

}  // namespace

IndexReader OpenReader(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    if (KindOfIndex(path) == IndexKind::kNone) throw CannotOpen(path, kNoSuchIndex);
  }
  auto reader = IndexReader::Open(paths);
  const std::string file = reader.status().file();
  return ValueOf(std::move(reader), IndexOf(file, paths));
}

IndexReader OpenReader(const std::string& path) {
  return OpenReader(std::vector<std::string>{path});
}

}  // namespace kestan_cli
