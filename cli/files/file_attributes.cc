#include "cli/files/file_attributes.h"

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace kestan_cli {
namespace {

constexpr const char* kAccessList = "system.posix_acl_access";
constexpr std::string_view kUserNames = "user.";
constexpr mode_t kPermissions = 0777;  // without setuid, setgid and the sticky bit
constexpr mode_t kOfOwner = 0700;

// ---- Extended attributes ----

bool IsRefusal(int error) { return error == EPERM || error == EACCES || error == EOPNOTSUPP; }

// Reads bytes of unknown size with `get(buffer, size)`.
//   Returns  0 or the system's error number.
template <typename Get>
int GetBytes(Get get, std::string* bytes) {
  while (true) {
    const ssize_t size = get(nullptr, 0);
    if (size < 0) return errno;
    bytes->resize(static_cast<std::size_t>(size));
    if (size == 0) return 0;
    const ssize_t got = get(bytes->data(), bytes->size());
    if (got < 0 && errno == ERANGE) continue;  // it has grown since
    if (got < 0) return errno;
    bytes->resize(static_cast<std::size_t>(got));
    return 0;
  }
}

int GetAttribute(int file, const char* name, std::string* value) {
  return GetBytes([&](char* to, std::size_t size) { return fgetxattr(file, name, to, size); },
                  value);
}

// Copies one attribute. Skips what the file system does not support, or this user may not read or
// set.
int CopyAttribute(int source, int target, const char* name) {
  std::string value;
  int error = GetAttribute(source, name, &value);
  if (error == 0 && fsetxattr(target, name, value.data(), value.size(), 0) != 0) error = errno;
  return error == ENODATA || IsRefusal(error) ? 0 : error;
}

int CopyUserAttributes(int source, int target) {
  std::string names;  // each with a NUL after it
  const int listed =
      GetBytes([&](char* to, std::size_t size) { return flistxattr(source, to, size); }, &names);
  if (listed != 0) return IsRefusal(listed) ? 0 : listed;
  for (std::size_t at = 0; at < names.size(); at += std::strlen(&names[at]) + 1) {
    const char* const name = &names[at];
    if (std::string_view(name).substr(0, kUserNames.size()) != kUserNames) continue;
    if (const int error = CopyAttribute(source, target, name); error != 0) return error;
  }
  return 0;
}

// ---- Access ----

bool IsMissing(int error) { return error == ENODATA || error == EOPNOTSUPP; }

// Gives `target` the owner and the group of `source` as far as this user may.
//   Returns  whether it has the group of `source` now.
bool CopyGroup(const struct stat& source, int target, NewOwner owner) {
  struct stat status {};
  if (fstat(target, &status) != 0) return false;
  const bool gives_away = owner == NewOwner::kSame && status.st_uid != source.st_uid;
  if (gives_away && fchown(target, source.st_uid, source.st_gid) == 0) return true;
  if (status.st_gid == source.st_gid) return true;
  return fchown(target, static_cast<uid_t>(-1), source.st_gid) == 0;
}

// Gives `target` the access control list of `source`, or removes the one that its directory gave it
// if `source` has none. A list is copied only if the group was kept.
//   Returns  false if `source` has a list that `target` does not get.
bool CopyAccessList(int source, int target, bool group_kept) {
  std::string list;
  const int error = GetAttribute(source, kAccessList, &list);
  if (error == 0 && group_kept) {
    return fsetxattr(target, kAccessList, list.data(), list.size(), 0) == 0;
  }
  const bool removed = fremovexattr(target, kAccessList) == 0 || IsMissing(errno);
  return removed && IsMissing(error);
}

// Returns `mode` with only those rights for the group and for others that both had.
mode_t WithoutGroup(mode_t mode) {
  const mode_t all = mode >> 3 & mode & 07;
  return (mode & kOfOwner) | all << 3 | all;
}

}  // namespace

// The mode comes last: until then nobody else can open the file.
int CopyAttributes(int source, int target, NewOwner owner) {
  struct stat status {};
  if (fstat(source, &status) != 0 || fchmod(target, 0600) != 0) return errno;
  if (const int error = CopyUserAttributes(source, target); error != 0) return error;
  const bool group_kept = CopyGroup(status, target, owner);
  const bool list_kept = CopyAccessList(source, target, group_kept);
  mode_t mode = status.st_mode & kPermissions;
  if (!group_kept) mode = WithoutGroup(mode);
  // The bits of the group are those of everybody whom the list named.
  if (!list_kept) mode &= kOfOwner;
  return fchmod(target, mode) == 0 ? 0 : errno;
}

}  // namespace kestan_cli
