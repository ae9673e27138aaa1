// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/upkeep/rights.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>

#include "search/files/descriptor.h"
#include "search/index/manifest/manifest.h"

namespace kestan::search {
namespace {

constexpr const char* kAccessList = "system.posix_acl_access";
constexpr const char* kListForNewFiles = "system.posix_acl_default";
constexpr mode_t kPermissions = 0777;  // without setuid, setgid and the sticky bit
constexpr mode_t kOfOwner = 0700;

bool HasAccessList(const std::string& path) {
  return getxattr(path.c_str(), kAccessList, nullptr, 0) > 0;
}

// Returns what the files in a folder of this mode can have: whom it does not let in reads none.
mode_t WithinReach(mode_t folder) {
  mode_t mode = folder;
  for (const mode_t others : {mode_t{S_IRWXG}, mode_t{S_IRWXO}}) {
    if ((folder & others & 0111) == 0) mode &= ~others;
  }
  return mode;
}

// Returns `mode` with only those rights for the group and for others that both had.
mode_t WithoutGroup(mode_t mode) {
  const mode_t both = mode >> 3 & mode & 07;
  return (mode & kOfOwner) | both << 3 | both;
}

bool RemoveAttribute(const std::string& path, const char* name) {
  return removexattr(path.c_str(), name) == 0 || errno == ENODATA || errno == EOPNOTSUPP;
}

}  // namespace

Status RemoveAccessLists(const std::string& folder) {
  const bool done =
      RemoveAttribute(folder, kAccessList) && RemoveAttribute(folder, kListForNewFiles);
  return done ? Status() : SystemError(errno, folder);
}

Result<Rights> Rights::Of(const std::string& path) {
  struct stat64 folder = {};
  if (stat64(path.c_str(), &folder) != 0) return SystemError(errno, path);
  const mode_t mode = folder.st_mode & kPermissions;
  if (!S_ISDIR(folder.st_mode)) return Rights(mode, folder.st_gid, HasAccessList(path));
  const mode_t reach = WithinReach(mode);
  const std::string manifest = ManifestPath(path);
  struct stat64 file = {};
  if (stat64(manifest.c_str(), &file) != 0) {
    return Rights(reach, folder.st_gid, HasAccessList(path));
  }
  const mode_t both = file.st_mode & reach;
  const mode_t kept = file.st_gid == folder.st_gid ? both : WithoutGroup(both);
  return Rights(kept, folder.st_gid, HasAccessList(path) || HasAccessList(manifest));
}

Status Rights::GiveToFolder(const std::string& path) const {
  return Give(path, S_IXUSR | (mode_ & 0666) | (mode_ & 0444) >> 2);
}

Status Rights::Give(const std::string& path, mode_t mode) const {
  const Descriptor file = OpenFile(path, O_RDONLY | O_NOFOLLOW);
  struct stat64 status = {};
  if (!file.is_open() || fstat64(file.number(), &status) != 0) return SystemError(errno, path);
  const bool has_group =
      status.st_gid == group_ || fchown(file.number(), static_cast<uid_t>(-1), group_) == 0;
  if (!has_group) mode = WithoutGroup(mode);
  if (has_list_) mode &= kOfOwner;
  mode |= S_IRUSR | S_IWUSR;
  return fchmod(file.number(), mode) == 0 ? Status() : SystemError(errno, path);
}

}  // namespace kestan::search
