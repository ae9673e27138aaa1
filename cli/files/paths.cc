// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/paths.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "cli/console/input.h"

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

std::string_view LastPart(std::string_view path) { return path.substr(path.rfind('/') + 1); }

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos || path.size() == 1) return "";
  return path.substr(0, std::max<std::size_t>(slash, 1));
}

bool IsBelow(const std::string& name, const std::string& path) {
  if (name.compare(0, path.size(), path) != 0) return false;
  return name.size() == path.size() || path.back() == '/' || name[path.size()] == '/';
}

bool HasVanished(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

}  // namespace kestan_cli
