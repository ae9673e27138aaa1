// Lists of paths as other programs make them.
#ifndef KESTAN_CLI_FILES_PATH_LIST_H_
#define KESTAN_CLI_FILES_PATH_LIST_H_

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace kestan_cli {

// Cuts `text` into paths, each ended by a NUL; the last one may lack it. Empty ones are left out.
std::vector<std::string> PathsIn(std::string_view text);

// The most bytes of a list: as many as the longest paths of all the documents of an index have.
inline constexpr std::size_t kMaxPathListBytes = std::size_t{1} << 28;

// Reads such a list from `stream` to its end.
//   Throws   CommandError if it cannot be read, or holds more than `max_bytes`.
std::vector<std::string> ReadPathList(std::FILE* stream, std::size_t max_bytes = kMaxPathListBytes);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_PATH_LIST_H_
