#include "cli/index/index_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

#include "cli/console/message.h"

namespace kestan_cli {
namespace {

constexpr int kOpenFlags = O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

bool IsAt(int file, const std::string& path) {
  struct stat open_file {};
  struct stat named {};
  return fstat(file, &open_file) == 0 && lstat(path.c_str(), &named) == 0 &&
         open_file.st_dev == named.st_dev && open_file.st_ino == named.st_ino;
}

// Locks or unlocks the whole open file. Locks of this kind and those of flock() are independent.
//   Returns  0 or the system's error number.
int SetLock(int file, decltype(F_WRLCK) type) {
  struct flock lock {};
  lock.l_type = static_cast<decltype(lock.l_type)>(type);
  lock.l_whence = SEEK_SET;
  return fcntl(file, F_OFD_SETLK, &lock) == 0 ? 0 : errno;
}

// Shares the lock that gdbm's readers share.
//   Returns  0 or the system's error number.
int Share(int file) { return flock(file, LOCK_SH | LOCK_NB) == 0 ? 0 : errno; }

// Some network file systems treat both kinds of locks as one. There, gdbm cannot open a file that
// this process has locked, so its lock must be enough.
int ShareBeside(int locked, int file) {
  int error = Share(file);
  if (error != EWOULDBLOCK) return error;
  SetLock(locked, F_UNLCK);
  return Share(file);
}

bool IsHeldByAnother(int error) { return error == EAGAIN || error == EACCES; }

}  // namespace

IndexLock::IndexLock(std::string path, const std::string& complaint) : path_(std::move(path)) {
  // A lock on a file that another process has just replaced keeps nobody out.
  while (Lock(complaint) && !IsAt(file_.number(), path_)) {
  }
}

// Returns false if there is no file.
bool IndexLock::Lock(const std::string& complaint) {
  const auto check = [&](int error) {
    if (IsHeldByAnother(error)) {
      throw CommandError(complaint + ": another process is changing it; try again later", kBusy);
    }
    if (error != 0) throw CommandError(complaint + ": cannot lock it: " + ReasonOf(error));
  };
  reader_ = Descriptor();
  file_ = Descriptor(open(path_.c_str(), O_RDWR | kOpenFlags));
  if (!file_.is_open() && errno == ENOENT) return false;
  if (!file_.is_open()) throw CommandError(complaint + ": " + ReasonOf(errno));
  check(SetLock(file_.number(), F_WRLCK));
  reader_ = Descriptor(open(path_.c_str(), O_RDONLY | kOpenFlags));
  if (!reader_.is_open()) return true;  // another process has just removed or replaced it
  check(ShareBeside(file_.number(), reader_.number()));
  return true;
}

bool IndexLock::IsInPlace() const {
  struct stat named {};
  if (has_file()) return IsAt(file_.number(), path_);
  return lstat(path_.c_str(), &named) != 0 && errno == ENOENT;
}

}  // namespace kestan_cli
