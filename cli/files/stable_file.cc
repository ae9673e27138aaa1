// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/stable_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <thread>

#include "cli/console/message.h"
#include "cli/files/skip.h"

namespace kestan_cli {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{1} << 17;

// Longer than any tick of the kernel's clock, which gives files their times.
constexpr std::chrono::milliseconds kTick{12};

auto Unreadable(int error) { return SkipFile(SkipKind::kUnreadable, ReasonOf(error)); }

auto Changed() { return SkipFile(SkipKind::kChanging, "changed while it was read"); }

OpenFile Open(const std::string& path) {
  // A pipe that has taken the file's place would wait for a writer.
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (descriptor < 0) throw Unreadable(errno);
  OpenFile file(fdopen(descriptor, "rb"));
  if (file == nullptr) {
    const int error = errno;
    close(descriptor);
    throw Unreadable(error);
  }
  std::setvbuf(file.get(), nullptr, _IONBF, 0);  // pieces are large
  return file;
}

struct stat StatusOf(std::FILE* file) {
  struct stat status {};
  if (fstat(fileno(file), &status) != 0) throw Unreadable(errno);
  return status;
}

void WaitForNextTick(const FileState& state) {
  using std::chrono::system_clock;
  const auto changed =
      std::chrono::seconds(state.mtime_seconds) + std::chrono::nanoseconds(state.mtime_nanoseconds);
  const auto age = system_clock::now().time_since_epoch() - changed;
  if (age >= std::chrono::nanoseconds(0) && age < kTick) std::this_thread::sleep_for(kTick);
}

}  // namespace

FileState StateOf(const struct stat& status) {
  return {static_cast<std::uint64_t>(status.st_size), status.st_mtim.tv_sec,
          static_cast<std::uint32_t>(status.st_mtim.tv_nsec)};
}

StableFile::StableFile(const std::string& path) : path_(path), file_(Open(path)) {
  const struct stat status = StatusOf(file_.get());
  if (!S_ISREG(status.st_mode)) throw SkipFile(SkipKind::kChanging, "not a file");
  state_ = StateOf(status);
  // One byte more than a small file has, so that one read shows its end or that it has grown.
  piece_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kPieceBytes, state_.bytes + 1)));
  WaitForNextTick(state_);
}

bool StableFile::Read(std::string_view* piece) {
  const std::size_t bytes = std::fread(piece_.data(), 1, piece_.size(), file_.get());
  if (bytes == 0 && std::ferror(file_.get()) != 0) throw Unreadable(errno);
  bytes_read_ += bytes;
  if (bytes_read_ > state_.bytes) throw Changed();
  *piece = std::string_view(piece_.data(), bytes);
  hash_.Add(*piece);
  return bytes > 0;
}

void StableFile::MoveTo(std::uint64_t at) {
  if (fseeko(file_.get(), static_cast<off_t>(at), SEEK_SET) != 0) throw Unreadable(errno);
  bytes_read_ = at;
}

void StableFile::CheckUnchanged() const {
  struct stat named {};
  if (stat(path_.c_str(), &named) != 0) {
    throw SkipFile(SkipKind::kChanging, "vanished while it was read");
  }
  const struct stat opened = StatusOf(file_.get());
  const bool same = named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
  if (!same || StateOf(opened) != state_) throw Changed();
}

Fingerprint StableFile::Finish() const {
  CheckUnchanged();
  if (bytes_read_ != state_.bytes) throw Changed();
  return {state_, hash_.Digits()};
}

}  // namespace kestan_cli
