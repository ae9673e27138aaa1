// SPDX-License-Identifier: GPL-3.0-or-later
// The functions of the C library that libgdbm calls for its files. libgdbm finds these first,
// because they are the program's own; each asks the watch and then calls the next one. A
// 32-bit libgdbm calls the names that end in 64, which take 64-bit offsets.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "tests/faults/stand_in.h"
#include "tests/faults/system_call_watch.h"

namespace {

using kestan_faults::Function;
using kestan_faults::Next;
using kestan_faults::Perform;
using kestan_faults::RuleOn;
using kestan_faults::Ruling;

template <typename Action>
int PerformOn(Function function, int file, Action action) {
  return Perform(RuleOn({function, file, 0}), -1, action);
}

template <typename Action>
int Open(const char* path, Action action) {
  const int file = Perform(RuleOn(Function::kOpen, path), -1, action);
  kestan_faults::NoteOpened(file, path);
  return file;
}

// Performs a read or a write of as many of `count` bytes as it may move.
template <typename Action>
ssize_t Transfer(Function function, int file, std::size_t count, Action action) {
  const Ruling ruling = RuleOn({function, file, count});
  const std::size_t bytes = std::min(count, ruling.most_bytes);
  return Perform(ruling, ssize_t{-1}, [&] { return action(bytes); });
}

// The mode that follows the flags of an open that may create the file.
mode_t ModeAfter(int flags, va_list arguments) {
  return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl50-cpp)
extern "C" {

int open(const char* path, int flags, ...) {
  static auto* const next = Next<int(const char*, int, mode_t)>("open");
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = ModeAfter(flags, arguments);
  va_end(arguments);
  return Open(path, [&] { return next(path, flags, mode); });
}

int open64(const char* path, int flags, ...) {
  static auto* const next = Next<int(const char*, int, mode_t)>("open64");
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = ModeAfter(flags, arguments);
  va_end(arguments);
  return Open(path, [&] { return next(path, flags, mode); });
}

// What a libgdbm that was compiled with _FORTIFY_SOURCE calls to open files that exist.
int __open_2(const char* path, int flags) { return open(path, flags); }
int __open64_2(const char* path, int flags) { return open64(path, flags); }

int mkstemp(char* pattern) {
  static auto* const next = Next<int(char*)>("mkstemp");
  return Open(pattern, [&] { return next(pattern); });
}

int mkstemp64(char* pattern) {
  static auto* const next = Next<int(char*)>("mkstemp64");
  return Open(pattern, [&] { return next(pattern); });
}

// Linux gives the descriptor back even where it reports an error.
int close(int file) {
  static auto* const next = Next<int(int)>("close");
  const Ruling ruling = RuleOn({Function::kClose, file, 0});
  kestan_faults::NoteClosed(file);
  const int result = next(file);
  return Perform(ruling, -1, [&] { return result; });
}

int fstat(int file, struct stat* status) noexcept {
  static auto* const next = Next<int(int, struct stat*)>("fstat");
  return PerformOn(Function::kStat, file, [&] { return next(file, status); });
}

int fstat64(int file, struct stat64* status) noexcept {
  static auto* const next = Next<int(int, struct stat64*)>("fstat64");
  return PerformOn(Function::kStat, file, [&] { return next(file, status); });
}

int flock(int file, int operation) noexcept {
  static auto* const next = Next<int(int, int)>("flock");
  return PerformOn(Function::kLock, file, [&] { return next(file, operation); });
}

ssize_t read(int file, void* bytes, std::size_t count) {
  static auto* const next = Next<ssize_t(int, void*, std::size_t)>("read");
  return Transfer(Function::kRead, file, count,
                  [&](std::size_t most) { return next(file, bytes, most); });
}

ssize_t pread64(int file, void* bytes, std::size_t count, off64_t offset) {
  static auto* const next = Next<ssize_t(int, void*, std::size_t, off64_t)>("pread64");
  return Transfer(Function::kRead, file, count,
                  [&](std::size_t most) { return next(file, bytes, most, offset); });
}

ssize_t write(int file, const void* bytes, std::size_t count) {
  static auto* const next = Next<ssize_t(int, const void*, std::size_t)>("write");
  const ssize_t moved = Transfer(Function::kWrite, file, count,
                                 [&](std::size_t most) { return next(file, bytes, most); });
  if (moved < static_cast<ssize_t>(count)) kestan_faults::NoteShortWrite(file);
  return moved;
}

off_t lseek(int file, off_t offset, int origin) noexcept {
  static auto* const next = Next<off_t(int, off_t, int)>("lseek");
  return Perform(RuleOn({Function::kSeek, file, 0}), off_t{-1},
                 [&] { return next(file, offset, origin); });
}

off64_t lseek64(int file, off64_t offset, int origin) noexcept {
  static auto* const next = Next<off64_t(int, off64_t, int)>("lseek64");
  return Perform(RuleOn({Function::kSeek, file, 0}), off64_t{-1},
                 [&] { return next(file, offset, origin); });
}

int ftruncate(int file, off_t size) noexcept {
  static auto* const next = Next<int(int, off_t)>("ftruncate");
  return PerformOn(Function::kTruncate, file, [&] { return next(file, size); });
}

int ftruncate64(int file, off64_t size) noexcept {
  static auto* const next = Next<int(int, off64_t)>("ftruncate64");
  return PerformOn(Function::kTruncate, file, [&] { return next(file, size); });
}

int fsync(int file) {
  static auto* const next = Next<int(int)>("fsync");
  return PerformOn(Function::kSync, file, [&] { return next(file); });
}

void* mmap(void* at, std::size_t size, int protection, int flags, int file, off_t offset) noexcept {
  static auto* const next = Next<void*(void*, std::size_t, int, int, int, off_t)>("mmap");
  return Perform(RuleOn({Function::kMap, file, 0}), MAP_FAILED,
                 [&] { return next(at, size, protection, flags, file, offset); });
}

void* mmap64(void* at, std::size_t size, int protection, int flags, int file,
             off64_t offset) noexcept {
  static auto* const next = Next<void*(void*, std::size_t, int, int, int, off64_t)>("mmap64");
  return Perform(RuleOn({Function::kMap, file, 0}), MAP_FAILED,
                 [&] { return next(at, size, protection, flags, file, offset); });
}

int msync(void* at, std::size_t size, int flags) {
  static auto* const next = Next<int(void*, std::size_t, int)>("msync");
  return PerformOn(Function::kMapSync, -1, [&] { return next(at, size, flags); });
}

int rename(const char* from, const char* to) noexcept {
  static auto* const next = Next<int(const char*, const char*)>("rename");
  return Perform(RuleOn(Function::kRename, from), -1, [&] { return next(from, to); });
}

int renameat2(int from_folder, const char* from, int to_folder, const char* to,
              unsigned flags) noexcept {
  static auto* const next = Next<int(int, const char*, int, const char*, unsigned)>("renameat2");
  return Perform(RuleOn(Function::kRename, from), -1,
                 [&] { return next(from_folder, from, to_folder, to, flags); });
}

int unlink(const char* path) noexcept {
  static auto* const next = Next<int(const char*)>("unlink");
  return Perform(RuleOn(Function::kRemove, path), -1, [&] { return next(path); });
}

int fchmod(int file, mode_t mode) noexcept {
  static auto* const next = Next<int(int, mode_t)>("fchmod");
  return PerformOn(Function::kMode, file, [&] { return next(file, mode); });
}

int fchown(int file, uid_t owner, gid_t group) noexcept {
  static auto* const next = Next<int(int, uid_t, gid_t)>("fchown");
  return PerformOn(Function::kOwner, file, [&] { return next(file, owner, group); });
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl50-cpp)
