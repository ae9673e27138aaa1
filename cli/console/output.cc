#include "cli/console/output.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <utility>
#include <vector>

#include "cli/console/control.h"
#include "cli/console/message.h"

namespace kestan_cli {

void Print(std::string_view text) {
  if (OutputIsTerminal()) {
    PrintPainted(Readable(text));
  } else {
    PrintPainted(text);
  }
}

void PrintPainted(std::string_view text) {
  errno = 0;
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (written && std::fflush(stdout) == 0) return;
  if (errno == EPIPE) throw BrokenPipe();
  throw CommandError("cannot write to the standard output: " + ReasonOf(errno));
}

bool OutputIsTerminal() { return isatty(STDOUT_FILENO) == 1; }

void Say(std::string_view line) { std::fputs((OneLine(line) + "\n").c_str(), stderr); }

std::string ReadInput(std::FILE* stream, std::size_t max_bytes) {
  std::string text;
  std::vector<char> piece(std::size_t{1} << 16);
  std::size_t bytes = 0;
  while ((bytes = std::fread(piece.data(), 1, piece.size(), stream)) > 0) {
    if (bytes > max_bytes - text.size()) {
      throw CommandError("the standard input holds more than " + std::to_string(max_bytes) +
                         " bytes");
    }
    text.append(piece.data(), bytes);
  }
  if (std::ferror(stream) == 0) return text;
  throw CommandError("cannot read the standard input: " + ReasonOf(errno));
}

namespace {

// Returns how many bytes of `text` a terminal shows as they are, up to the first control that is no
// line feed.
std::size_t HarmlessBytes(std::string_view text) {
  std::size_t bytes = 0;
  while (bytes < text.size()) {
    const Character next = FirstCharacter(text.substr(bytes));
    if (next.is_control && text[bytes] != '\n') break;
    bytes += next.bytes;
  }
  return bytes;
}

// Takes no memory, for there may be none left.
void WriteReadable(std::string_view text) {
  while (!text.empty()) {
    const std::size_t bytes = HarmlessBytes(text);
    std::fwrite(text.data(), 1, bytes, stderr);
    text.remove_prefix(bytes);
    if (text.empty()) return;
    std::fprintf(stderr, "\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(text[0])));
    text.remove_prefix(1);
  }
}

}  // namespace

CapturedStderr* CapturedStderr::current_ = nullptr;

CapturedStderr::CapturedStderr() {
  static const bool registered = std::atexit(LetOutAtExit) == 0;
  Descriptor held(memfd_create("errors", MFD_CLOEXEC));
  Descriptor stream(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0));
  if (!registered || !held.is_open() || !stream.is_open()) return;  // then all is said at once
  std::fflush(stderr);
  if (dup2(held.number(), STDERR_FILENO) < 0) return;
  held_ = std::move(held);
  stream_ = std::move(stream);
  current_ = this;
}

CapturedStderr::~CapturedStderr() { LetOut(); }

void CapturedStderr::LetOutAtExit() {
  if (current_ != nullptr) current_->LetOut();
}

void CapturedStderr::LetOut() {
  if (current_ != this) return;
  current_ = nullptr;
  std::fflush(stderr);
  dup2(stream_.number(), STDERR_FILENO);
  std::array<char, 4096> piece;
  off_t at = 0;
  ssize_t bytes = 0;
  while (!dropped_ && (bytes = pread(held_.number(), piece.data(), piece.size(), at)) > 0) {
    WriteReadable({piece.data(), static_cast<std::size_t>(bytes)});
    at += bytes;
  }
}

StandardDescriptors::StandardDescriptors() {
  // Opened for reading only, so that printing to a closed stream still fails.
  for (OpenFile& placeholder : placeholders_) placeholder.reset(std::fopen("/dev/null", "r"));
}

}  // namespace kestan_cli
