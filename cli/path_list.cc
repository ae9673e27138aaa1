#include "path_list.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "message.h"

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

std::vector<std::string> ReadPathList(std::FILE* stream) {
  std::string text;
  std::vector<char> piece(std::size_t{1} << 16);
  std::size_t bytes = 0;
  while ((bytes = std::fread(piece.data(), 1, piece.size(), stream)) > 0) {
    text.append(piece.data(), bytes);
  }
  if (std::ferror(stream) != 0) {
    throw CommandError("cannot read the standard input: " + ReasonOf(errno));
  }
  return PathsIn(text);
}

}  // namespace kestan_cli
