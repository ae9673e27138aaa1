// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/ignore/version_control.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace kestan_cli {
namespace {

// A folder of version control, and files that one of them has.
struct Known {
  std::string_view folder;
  const char* system;
  std::array<const char*, 4> marks;
};

constexpr std::array kKnown{
    Known{".git", "git", {"HEAD"}},
    Known{".hg", "Mercurial", {"requires", "store", "00changelog.i"}},
    Known{".svn", "Subversion", {"wc.db", "entries"}},
    Known{".bzr", "Bazaar", {"branch-format", "branch", "repository"}},
    Known{"CVS", "CVS", {"Entries", "Repository", "Root"}},
    Known{"_darcs", "Darcs", {"format", "inventory", "hashed_inventory", "patches"}},
};

// Returns whether `name` is a file that says where the folder of git is, as in a second work tree.
bool IsLinkToGit(int folder, const std::string& name) {
  constexpr std::string_view kStart = "gitdir: ";
  if (name != ".git") return false;
  const int file = openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) return false;
  std::array<char, kStart.size()> bytes{};
  const bool is_read = read(file, bytes.data(), bytes.size()) == ssize_t{bytes.size()};
  close(file);
  return is_read && std::string_view(bytes.data(), bytes.size()) == kStart;
}

}  // namespace

std::string VersionControlOf(int folder, const std::string& name) {
  const auto* const known = std::find_if(kKnown.begin(), kKnown.end(),
                                         [&](const Known& each) { return each.folder == name; });
  if (known == kKnown.end()) return "";
  const bool is_marked =
      std::any_of(known->marks.begin(), known->marks.end(), [&](const char* mark) {
        if (mark == nullptr) return false;
        const std::string path = name + "/" + mark;
        return faccessat(folder, path.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
      });
  return is_marked || IsLinkToGit(folder, name) ? known->system : "";
}

}  // namespace kestan_cli
