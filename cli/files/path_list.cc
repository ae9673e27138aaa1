#include "cli/files/path_list.h"

#include <algorithm>
#include <cstddef>

#include "cli/console/output.h"

namespace kestan_cli {

std::vector<std::string> PathsIn(std::string_view text) {
  std::vector<std::string> paths;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\0'), text.size());
    if (end > 0) paths.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return paths;
}

std::vector<std::string> ReadPathList(std::FILE* stream, std::size_t max_bytes) {
  return PathsIn(ReadInput(stream, max_bytes));
}

}  // namespace kestan_cli
