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

// Returns `mode` with as much for the group as for all others.
mode_t WithoutGroup(mode_t mode) {
  const mode_t others = mode & S_IRWXO;
  return (mode & ~static_cast<mode_t>(S_IRWXG)) | (mode & S_IRWXG & others << kGroupShift);
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
  mode_t mode = folder.st_mode & kReadAndWrite;
  if (!TakeOwner(file, own, folder)) mode = WithoutGroup(mode);
  // Where modes cannot be set, as on some mounts of foreign disks, the mount decides.
  if ((own.st_mode & ALLPERMS) != mode) static_cast<void>(fchmod(file.number(), mode));
}

}  // namespace kestan::search
