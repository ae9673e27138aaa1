#include "file_swap.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include "command.h"
#include "message.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPieceBytes = std::size_t{1} << 20;
constexpr std::string_view kTemporaryPattern = ".XXXXXX";
constexpr mode_t kModeBits = 07777;

bool IsAt(int file, const std::string& path) {
  struct stat open_file {};
  struct stat named {};
  return fstat(file, &open_file) == 0 && stat(path.c_str(), &named) == 0 &&
         open_file.st_dev == named.st_dev && open_file.st_ino == named.st_ino;
}

int WriteAll(int file, const char* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t written = write(file, bytes, count);
    if (written < 0 && errno != EINTR) return errno;
    if (written <= 0) continue;
    bytes += written;
    count -= static_cast<std::size_t>(written);
  }
  return 0;
}

int CopyBytes(int source, int target) {
  if (ioctl(target, FICLONE, source) == 0) return 0;
  std::vector<char> piece(kPieceBytes);
  off_t at = 0;
  while (true) {
    const ssize_t read = pread(source, piece.data(), piece.size(), at);
    if (read < 0 && errno == EINTR) continue;
    if (read < 0) return errno;
    if (read == 0) return 0;
    if (const int error = WriteAll(target, piece.data(), static_cast<std::size_t>(read))) {
      return error;
    }
    at += read;
  }
}

bool IsTemporaryOf(const std::string& name, const std::string& copy) {
  const std::size_t bytes = copy.size() + kTemporaryPattern.size();
  return name.size() == bytes && name.compare(0, copy.size(), copy) == 0 &&
         name[copy.size()] == '.';
}

}  // namespace

FileLock::FileLock(const std::string& path, const std::string& complaint) : path_(path + ".lock") {
  const auto refuse = [&](const std::string& reason, int status) {
    throw CommandError(complaint + ": " + reason, status);
  };
  // A file that its last holder has just deleted locks nobody out.
  do {
    file_ = Descriptor(open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    if (!file_.is_open()) refuse("no lock " + Quoted(path_) + ": " + ReasonOf(errno), kFailed);
    if (flock(file_.number(), LOCK_EX | LOCK_NB) == 0) continue;
    if (errno == EWOULDBLOCK) refuse("another process is changing it; try again later", kBusy);
    refuse("no lock " + Quoted(path_) + ": " + ReasonOf(errno), kFailed);
  } while (!IsAt(file_.number(), path_));
}

FileLock::~FileLock() { unlink(path_.c_str()); }

int CopyFile(int source, const std::string& path) {
  struct stat status {};
  if (fstat(source, &status) != 0) return errno;
  Descriptor target(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!target.is_open()) return errno;
  if (const int error = CopyBytes(source, target.number())) return error;
  // Only a superuser can give a file away; then its owner goes on as it was.
  if (fchown(target.number(), status.st_uid, status.st_gid) != 0 && errno != EPERM) return errno;
  if (fchmod(target.number(), status.st_mode & kModeBits) != 0) return errno;
  return target.Close() == 0 ? 0 : errno;
}

int SyncPath(const std::string& path) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  return file.is_open() && fsync(file.number()) == 0 ? 0 : errno;
}

std::string FolderOf(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  return folder.empty() ? "." : folder.string();
}

void RemoveLeftovers(const std::string& path) {
  unlink(path.c_str());
  const std::string name = fs::path(path).filename().string();
  std::error_code error;
  fs::directory_iterator entry(FolderOf(path), error);
  while (!error && entry != fs::directory_iterator()) {
    if (IsTemporaryOf(entry->path().filename().string(), name)) unlink(entry->path().c_str());
    entry.increment(error);
  }
}

}  // namespace kestan_cli
