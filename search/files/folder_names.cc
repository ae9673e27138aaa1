// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/files/folder_names.h"

#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string_view>

#include "search/files/descriptor.h"

namespace kestan::search {
namespace {

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

}  // namespace

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return path.substr(0, slash == 0 ? 1 : slash);
}

Result<std::vector<std::string>> NamesIn(const std::string& folder) {
  const std::unique_ptr<DIR, CloseFolder> opened(opendir(folder.c_str()));
  if (opened == nullptr) return SystemError(errno, folder);
  std::vector<std::string> names;
  for (;;) {
    errno = 0;
    const dirent64* const entry =
        readdir64(opened.get());  // one caller: NOLINT(concurrency-mt-unsafe)
    if (entry == nullptr) break;
    const std::string_view name(entry->d_name);
    if (name != "." && name != "..") names.emplace_back(name);
  }
  if (errno != 0) return SystemError(errno, folder);
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace kestan::search
