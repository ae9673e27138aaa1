// SPDX-License-Identifier: GPL-3.0-or-later
// Paths as users and programs give them, and as documents are named after them.
#ifndef KESTAN_CLI_FILES_PATHS_H_
#define KESTAN_CLI_FILES_PATHS_H_

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace kestan_cli {

// Splits `text` into paths, each ended by a NUL; the last NUL may be missing. Leaves out empty
// paths.
std::vector<std::string> PathsIn(std::string_view text);

// The most bytes of a list: as many as the longest paths of all the documents of an index have.
inline constexpr std::size_t kMaxPathListBytes = std::size_t{1} << 28;

// Reads such a list from `stream` to its end.
//   Throws   CommandError if it cannot be read, or holds more than `max_bytes`.
std::vector<std::string> ReadPathList(std::FILE* stream, std::size_t max_bytes = kMaxPathListBytes);

// Returns what follows the last slash of `path`.
std::string_view LastPart(std::string_view path);

// Returns the folder that the canonical `path` is in; "" for "/".
std::string FolderOf(const std::string& path);

// Returns the longest of `paths`, canonical paths in a set or a map, at or below which `name` is;
// "" if there is none.
template <typename Paths>
std::string InnermostOf(const Paths& paths, const std::string& name) {
  std::string above = name;
  while (!above.empty() && paths.count(above) == 0) above = FolderOf(above);
  return above;
}

// Returns whether `name` is at `path` or below it. Both are canonical.
bool IsBelow(const std::string& name, const std::string& path);

// Returns whether nothing is at `path` any more; false where the system does not say.
bool HasVanished(const std::string& path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_PATHS_H_
