#include "cli/index/captured_stderr.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include "cli/console/diagnostics.h"

namespace kestan_cli {

CapturedStderr* CapturedStderr::current_ = nullptr;

CapturedStderr::CapturedStderr() {
  static const bool registered = std::atexit(ReleaseAtExit) == 0;
  Descriptor held(memfd_create("errors", MFD_CLOEXEC));
  Descriptor stream(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0));
  if (!registered || !held.is_open() || !stream.is_open()) return;  // nothing is held back then
  FlushDiagnostics();
  if (dup2(held.number(), STDERR_FILENO) < 0) return;
  held_ = std::move(held);
  stream_ = std::move(stream);
  current_ = this;
}

CapturedStderr::~CapturedStderr() { Release(); }

void CapturedStderr::ReleaseAtExit() {
  if (current_ != nullptr) current_->Release();
}

void CapturedStderr::Release() {
  if (current_ != this) return;
  current_ = nullptr;
  FlushDiagnostics();
  dup2(stream_.number(), STDERR_FILENO);
  std::array<char, 4096> piece;
  off_t at = 0;
  ssize_t bytes = 0;
  while (!dropped_ && (bytes = pread(held_.number(), piece.data(), piece.size(), at)) > 0) {
    PrintDiagnostics({piece.data(), static_cast<std::size_t>(bytes)});
    at += bytes;
  }
}

}  // namespace kestan_cli
