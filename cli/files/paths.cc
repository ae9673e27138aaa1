#include "cli/files/paths.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "cli/console/input.h"

namespace kestan_cli {
namespace {

void AppendPart(std::string_view part, std::string* name) {
  if (!name->empty() && name->back() != '/') *name += '/';
  *name += part;
}

bool IsFolder(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// Adds ".." to `*name`: removes its last part if that is a directory. A link stays: the
// directory above its target is another one.
void GoUp(std::string* name) {
  if (*name == "/") return;
  const std::string_view last = LastPart(*name);
  if (last.empty() || last == ".." || !IsFolder(*name)) return AppendPart("..", name);
  name->resize(name->size() - last.size());
  if (name->size() > 1) name->pop_back();
}

}  // namespace

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

std::string NameOf(const std::string& path) {
  std::string name = path.substr(0, 1) == "/" ? "/" : "";
  std::string_view rest = path;
  while (!rest.empty()) {
    const std::string_view part = rest.substr(0, rest.find('/'));
    rest.remove_prefix(std::min(part.size() + 1, rest.size()));
    if (part == "..") {
      GoUp(&name);
    } else if (!part.empty() && part != ".") {
      AppendPart(part, &name);
    }
  }
  return name.empty() && !path.empty() ? "." : name;
}

bool IsBelow(const std::string& name, const std::set<std::string>& paths) {
  std::string above = name;
  while (true) {
    if (paths.count(above) != 0) return true;
    // It leaves the directory before it, for one that is not known.
    if (LastPart(above) == "..") return false;
    const std::size_t slash = above.rfind('/');
    if (slash == std::string::npos) break;
    above.resize(slash);
  }
  // What is left is the first part of the name.
  return paths.count(above.empty() ? "/" : ".") != 0;
}

bool HasVanished(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

}  // namespace kestan_cli
