// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/salvage/file_reading.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>

namespace kestan {
namespace {

constexpr std::size_t kChunkBytes = 1 << 20;
constexpr std::size_t kBlockBytes = 512;

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number() const { return number_; }

 private:
  const int number_;
};

// Reads up to `wanted` bytes to `to`. Tries again after a signal.
ssize_t ReadAt(int descriptor, char* to, std::size_t wanted, std::uint64_t at) {
  ssize_t count = 0;
  do {
    count = pread(descriptor, to, wanted, static_cast<off_t>(at));
  } while (count < 0 && errno == EINTR);
  return count;
}

}  // namespace

int ReadWholeFile(const char* path, String* bytes, std::uint64_t* unreadable_bytes) {
  *unreadable_bytes = 0;
  const Descriptor file(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (file.number() < 0 || fstat(file.number(), &status) != 0) return errno;
  if (!S_ISREG(status.st_mode)) return EINVAL;
  const auto size = static_cast<std::uint64_t>(status.st_size);
  if (size > bytes->max_size() / 2) return EFBIG;

  bytes->assign(static_cast<std::size_t>(size), '\0');
  for (std::size_t at = 0; at < bytes->size();) {
    const std::size_t left = bytes->size() - at;
    ssize_t count = ReadAt(file.number(), &(*bytes)[at], std::min(left, kChunkBytes), at);
    const std::size_t block = std::min(left, kBlockBytes - at % kBlockBytes);
    if (count < 0) count = ReadAt(file.number(), &(*bytes)[at], block, at);
    if (count == 0) bytes->resize(at);  // another process has cut the file
    if (count < 0) *unreadable_bytes += block;
    at += count < 0 ? block : static_cast<std::size_t>(count);
  }
  return 0;
}

MappedFile::MappedFile(int descriptor) {
  struct stat status {};
  if (fstat(descriptor, &status) != 0 || status.st_size <= 0) return;
  const auto bytes = static_cast<std::uint64_t>(status.st_size);
  if (bytes > std::numeric_limits<std::size_t>::max() / 2) return;
  size_ = static_cast<std::size_t>(bytes);
  start_ = mmap(nullptr, size_, PROT_READ, MAP_SHARED, descriptor, 0);
  if (start_ == MAP_FAILED) start_ = nullptr;
}

MappedFile::~MappedFile() {
  if (start_ != nullptr) munmap(start_, size_);
}

}  // namespace kestan
