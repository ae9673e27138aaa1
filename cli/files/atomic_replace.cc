#include "cli/files/atomic_replace.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <filesystem>
#include <vector>

#include "cli/files/descriptor.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPieceBytes = std::size_t{1} << 20;

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

}  // namespace

int CopyFile(int source, const std::string& path) {
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  Descriptor target(open(path.c_str(), kFlags, 0600));
  if (!target.is_open()) return errno;
  if (const int error = CopyBytes(source, target.number())) return error;
  return target.Close() == 0 ? 0 : errno;
}

int SyncPath(const std::string& path) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  return file.is_open() && fsync(file.number()) == 0 ? 0 : errno;
}

std::string DirectoryOf(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  return folder.empty() ? "." : folder.string();
}

}  // namespace kestan_cli
