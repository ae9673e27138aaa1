// Paths as users and programs give them, and as documents are named after them.
#ifndef KESTAN_CLI_FILES_PATHS_H_
#define KESTAN_CLI_FILES_PATHS_H_

#include <cstddef>
#include <cstdio>
#include <set>
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

// Returns `path` as documents are named: a path to the same file without ".", "//", a slash at the
// end, and ".." after an existing directory. After anything else, such as a symbolic link, ".."
// stays. An empty path stays empty.
std::string NameOf(const std::string& path);

// Returns whether a document `name` is at one of `paths` (as NameOf returns them) or below it,
// by their names alone. What follows a ".." is not below what precedes it.
bool IsBelow(const std::string& name, const std::set<std::string>& paths);

// Returns whether nothing is at `path` any more; false where the system does not say.
bool HasVanished(const std::string& path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_PATHS_H_
