// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/upkeep/staging_folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <utility>
#include <vector>

#include "search/files/descriptor.h"
#include "search/files/folder_names.h"
#include "search/files/new_file.h"
#include "search/files/output_file.h"
#include "search/index/manifest/manifest.h"

namespace kestan::search {
namespace {

constexpr mode_t kNewFolder = 0777;  // less what the process masks out
constexpr mode_t kOwnerOnly = 0700;

Status IsThere(const std::string& path) {
  return {StatusCode::kAlreadyExists, "there is something already", path};
}

Status CheckIsFree(const std::string& path) {
  struct stat64 status = {};
  if (lstat64(path.c_str(), &status) == 0) return IsThere(path);
  return errno == ENOENT ? Status() : SystemError(errno, path);
}

std::string MarkerIn(const std::string& folder) { return folder + "/" + kStagingMarker; }

// Removes what makes an index from a folder, and the folder if nothing else is in it. Its marker is
// the last to go: a folder that stays is still known for what it is.
void RemoveIndexIn(const std::string& folder) {
  static_cast<void>(RemoveUnnamedFiles(folder, Manifest()));
  unlink(ManifestPath(folder).c_str());
  const Result<std::vector<std::string>> names = NamesIn(folder);
  const bool has_others =
      !names.ok() || std::any_of(names->begin(), names->end(),
                                 [](const std::string& name) { return name != kStagingMarker; });
  if (has_others) return;
  unlink(MarkerIn(folder).c_str());
  rmdir(folder.c_str());
}

// Removes the folder that an earlier process of this user left at `path`, and nothing else: an
// index that somebody has called so stays, and so does a link.
//   Returns  kAlreadyExists; kBusy if that process still works there.
Status RemoveLeftOver(const std::string& path) {
  struct stat64 status = {};
  const bool is_own =
      lstat64(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid();
  if (!is_own) return IsThere(path);
  if (access(MarkerIn(path).c_str(), F_OK) != 0) {
    return rmdir(path.c_str()) == 0 ? Status() : IsThere(path);
  }
  const Result<WriterLock> lock = WriterLock::Take(MarkerIn(path));
  if (lock.ok()) RemoveIndexIn(path);
  return lock.status();
}

int MakeFolder(const std::string& path) { return mkdir(path.c_str(), kNewFolder) == 0 ? 0 : errno; }

// Files have the rights of their folder, which had others when they were made.
Status ShareLikeStagingFolder(const std::string& path) {
  const Descriptor file = OpenFile(path, O_RDONLY | O_NOFOLLOW);
  if (!file.is_open()) return SystemError(errno, path);
  ShareLikeFolder(file, path);
  return {};
}

Result<std::vector<std::string>> PathsIn(const std::string& folder) {
  Result<std::vector<std::string>> names = NamesIn(folder);
  if (!names.ok()) return names;
  for (std::string& name : *names) name.insert(0, folder + "/");
  return names;
}

}  // namespace

std::string WithoutSlashes(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

Status StagingFolder::Create(const std::string& target, const std::string& like) {
  Status status = CheckIsFree(target);
  if (!status.ok()) return status;
  if (!like.empty()) {
    Result<Rights> rights = Rights::Of(like);
    if (!rights.ok()) return rights.status();
    rights_ = *rights;
  }
  target_ = target;
  std::string path = target + ".new";
  int error = MakeFolder(path);
  if (error == EEXIST) {
    status = RemoveLeftOver(path);
    if (!status.ok()) return status;
    error = MakeFolder(path);
  }
  if (error != 0) return SystemError(error, path);
  path_ = path;
  if (rights_) status = RemoveAccessLists(path);
  if (!status.ok()) return status;
  struct stat64 made = {};
  if (stat64(path.c_str(), &made) != 0 || chmod(path.c_str(), kOwnerOnly) != 0) {
    return SystemError(errno, path);
  }
  folder_mode_ = made.st_mode & kNewFolder;
  Result<WriterLock> marker = WriterLock::Take(MarkerIn(path));
  if (marker.ok()) marker_ = std::move(*marker);
  return marker.status();
}

Status StagingFolder::CreateTemporary() {
  const char* const folder = std::getenv("TMPDIR");  // NOLINT(concurrency-mt-unsafe): only read
  std::string path = folder != nullptr && *folder != '\0' ? folder : "/tmp";
  path += "/kestan-XXXXXX";
  if (mkdtemp(path.data()) == nullptr) return SystemError(errno, path);
  path_ = std::move(path);
  return {};
}

void StagingFolder::RemoveSegment(std::uint64_t number) const {
  SegmentInfo info;
  info.number = number;
  RemoveSegmentFiles(path_, info);
}

Status StagingFolder::GiveRights(const std::string& path, bool is_folder) const {
  if (rights_) return is_folder ? rights_->GiveToFolder(path) : rights_->GiveToFile(path);
  if (!is_folder || chmod(path.c_str(), folder_mode_) == 0) return {};
  return SystemError(errno, path);
}

Status StagingFolder::PublishFolder() {
  const Result<std::vector<std::string>> files = PathsIn(path_);
  if (!files.ok()) return files.status();
  Status status = GiveRights(path_, true);
  for (const std::string& file : *files) {
    if (!status.ok()) return status;
    status = ShareLikeStagingFolder(file);
  }
  if (status.ok()) status = SyncFiles(*files);
  if (status.ok()) status = SyncDirectory(path_);
  if (status.ok()) status = MoveToTarget(path_);
  if (!status.ok()) return status;
  path_.clear();
  unlink(MarkerIn(target_).c_str());
  return SyncDirectory(FolderOf(target_));
}

Status StagingFolder::PublishFile(const std::string& file) {
  Status status = GiveRights(file, false);
  if (status.ok()) status = SyncFile(file);
  if (status.ok()) status = MoveToTarget(file);
  return status.ok() ? SyncDirectory(FolderOf(target_)) : status;
}

// Replaces nothing, not even what has appeared meanwhile. Where the system cannot promise that, it
// is looked for right before.
Status StagingFolder::MoveToTarget(const std::string& from) const {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, target_.c_str(), RENAME_NOREPLACE) == 0) {
    return {};
  }
  if (errno == EEXIST) return IsThere(target_);
  if (errno != EINVAL && errno != ENOSYS) return SystemError(errno, target_);
  Status status = CheckIsFree(target_);
  if (!status.ok()) return status;
  return std::rename(from.c_str(), target_.c_str()) == 0 ? Status() : SystemError(errno, target_);
}

// What stays for lack of memory is removed by the next one that makes an index there.
void StagingFolder::Remove() noexcept {
  if (path_.empty()) return;
  try {
    RemoveIndexIn(path_);
  } catch (const std::exception&) {
    return;
  }
}

}  // namespace kestan::search
