// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/files/writer_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <utility>

#include "search/files/new_file.h"

namespace kestan::search {
namespace {

// Opens the file, or makes it. A link, or a file that has other names too, may lead to what is not
// part of the index: nothing is to be written there.
Result<Descriptor> OpenOrCreate(const std::string& path) {
  Descriptor file = CreateFile(path);
  if (!file.is_open() && errno == EEXIST) file = OpenFile(path, O_RDWR | O_NOFOLLOW);
  struct stat64 information = {};
  if (!file.is_open() || fstat64(file.number(), &information) != 0) return SystemError(errno, path);
  if (S_ISREG(information.st_mode) && information.st_nlink <= 1) return file;
  return Status(StatusCode::kDamaged, "it is not the lock of an index", path);
}

int Lock(const Descriptor& file) {
  while (flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EINTR) return errno;
  }
  return 0;
}

// Returns who holds the lock, as far as the file says it.
std::string HolderOf(const Descriptor& file) {
  std::array<char, 20> bytes{};
  const std::int64_t count = ReadAt(file, bytes.data(), bytes.size(), 0);
  std::string_view number(bytes.data(), static_cast<std::size_t>(std::max<std::int64_t>(count, 0)));
  number = number.substr(0, number.find_first_not_of("0123456789"));
  return number.empty() ? "another process" : "process " + std::string(number);
}

// The number is for people: a disk that has no room for it is no reason not to write.
void WriteHolder(const Descriptor& file) {
  if (ftruncate(file.number(), 0) == 0) WriteAll(file, std::to_string(getpid()) + "\n");
}

}  // namespace

Result<WriterLock> WriterLock::Take(const std::string& path) {
  Result<Descriptor> opened = OpenOrCreate(path);
  if (!opened.ok()) return opened.status();
  Descriptor& file = *opened;
  const int error = Lock(file);
  if (error == EWOULDBLOCK) {
    return Status(StatusCode::kBusy, HolderOf(file) + " is writing it", path);
  }
  if (error != 0) return SystemError(error, path);
  WriteHolder(file);
  return WriterLock(std::move(file));
}

WriterLock& WriterLock::operator=(WriterLock&& other) noexcept {
  if (this != &other) {
    Release();
    file_ = std::move(other.file_);
  }
  return *this;
}

void WriterLock::Release() {
  if (!file_.is_open()) return;
  // Nobody is to read the number of a process that holds the lock no more.
  [[maybe_unused]] const int ignored = ftruncate(file_.number(), 0);
  flock(file_.number(), LOCK_UN);  // a child process may have the file open too
  file_.Close();
}

}  // namespace kestan::search
