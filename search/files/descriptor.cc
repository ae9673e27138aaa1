// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/files/descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace kestan::search {
namespace {

StatusCode CodeOfError(int error) {
  if (error == ENOENT) return StatusCode::kNotFound;
  return error == ENOMEM ? StatusCode::kOutOfMemory : StatusCode::kSystem;
}

}  // namespace

Status SystemError(int error, const std::string& file) {
  return Status::OfSystem(CodeOfError(error), error, std::generic_category().message(error), file);
}

Status NoIndexAt(const std::string& path) {
  return Status::OfSystem(StatusCode::kNotFound, ENOENT, "there is no index", path);
}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  if (this != &other) {
    Close();
    number_ = other.Release();
  }
  return *this;
}

int Descriptor::Release() { return std::exchange(number_, -1); }

int Descriptor::Close() {
  if (!is_open()) return 0;
  // Interrupted or not, the descriptor is closed afterwards.
  return close(Release()) == 0 || errno == EINTR ? 0 : errno;
}

Descriptor OpenFile(const std::string& path, int flags, unsigned mode) {
  for (;;) {
    Descriptor file(open(path.c_str(), flags | O_CLOEXEC | O_LARGEFILE | O_NONBLOCK, mode));
    if (file.is_open() || errno != EINTR) return file;
  }
}

Result<Descriptor> OpenForReading(const std::string& path, std::uint64_t* size) {
  Descriptor file = OpenFile(path, O_RDONLY);
  struct stat64 information = {};
  if (!file.is_open() || fstat64(file.number(), &information) != 0) return SystemError(errno, path);
  if (!S_ISREG(information.st_mode)) {
    return Status(StatusCode::kDamaged, "it is not a regular file", path);
  }
  *size = static_cast<std::uint64_t>(information.st_size);
  return file;
}

std::int64_t ReadAt(const Descriptor& file, char* bytes, std::size_t size, std::uint64_t offset) {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count =
        pread64(file.number(), bytes + done, size - done, static_cast<off64_t>(offset + done));
    if (count == 0) break;
    if (count > 0) {
      done += static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      return -1;
    }
  }
  return static_cast<std::int64_t>(done);
}

int WriteAll(const Descriptor& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(file.number(), bytes.data(), bytes.size());
    if (count >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

int Sync(const Descriptor& file) {
  while (fsync(file.number()) != 0) {
    if (errno != EINTR) return errno;
  }
  return 0;
}

}  // namespace kestan::search
