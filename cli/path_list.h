// Lists of paths as other programs make them.
#ifndef KESTAN_CLI_PATH_LIST_H_
#define KESTAN_CLI_PATH_LIST_H_

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace kestan_cli {

// Cuts `text` into paths, each ended by a NUL; the last one may lack it. Empty ones are left out.
std::vector<std::string> PathsIn(std::string_view text);

// Reads such a list from `stream` to its end.
//   Throws   CommandError if it cannot be read.
std::vector<std::string> ReadPathList(std::FILE* stream);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_PATH_LIST_H_
