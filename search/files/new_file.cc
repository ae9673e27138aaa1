// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/files/new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "search/files/folder_names.h"

namespace kestan::search {
namespace {

constexpr mode_t kOwnMode = 0600;
constexpr mode_t kReadAndWrite = 0666;
constexpr unsigned kGroupShift = 3;

// Returns the mode of a file without the group of its folder. Its own group gets no more than all
// others. Members of the folder's group count among all others now, who get no more than those if
// the folder lets both in.
mode_t WithoutGroup(mode_t folder) {
  const mode_t others = folder & S_IRWXO;
  const mode_t both = others & folder >> kGroupShift;
  const mode_t owner = folder & S_IRWXU;
  const bool lets_group_in = (folder & S_IXGRP) != 0;
  return owner | both << kGroupShift | (lets_group_in ? both : others);
}

// Gives the file the owner of `folder` if this process may, at least the group.
//   Returns  whether the file has the group now.
bool TakeOwner(const Descriptor& file, const struct stat64& own, const struct stat64& folder) {
  if (own.st_uid == folder.st_uid && own.st_gid == folder.st_gid) return true;
  if (own.st_uid != folder.st_uid && fchown(file.number(), folder.st_uid, folder.st_gid) == 0) {
    return true;
  }
  constexpr auto kSameOwner = static_cast<uid_t>(-1);
  return own.st_gid == folder.st_gid || fchown(file.number(), kSameOwner, folder.st_gid) == 0;
}

}  // namespace

Descriptor CreateFile(const std::string& path) {
  Descriptor file = OpenFile(path, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, kOwnMode);
  if (file.is_open()) ShareLikeFolder(file, path);
  return file;
}

void ShareLikeFolder(const Descriptor& file, const std::string& path) {
  struct stat64 own = {};
  struct stat64 folder = {};
  if (fstat64(file.number(), &own) != 0) return;
  if (stat64(FolderOf(path).c_str(), &folder) != 0) return;
  const bool has_group = TakeOwner(file, own, folder);
  const mode_t mode = kReadAndWrite & (has_group ? folder.st_mode : WithoutGroup(folder.st_mode));
  // Where modes cannot be set, as on some mounts of foreign disks, the mount decides.
  if ((own.st_mode & ALLPERMS) != mode) static_cast<void>(fchmod(file.number(), mode));
}

}  // namespace kestan::search
