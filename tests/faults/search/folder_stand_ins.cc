// SPDX-License-Identifier: GPL-3.0-or-later
// More functions of the C library that the search library calls for its files and folders, as
// system_call_stand_ins.cc has those of libgdbm.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "tests/faults/stand_in.h"
#include "tests/faults/system_call_watch.h"

namespace {

using kestan_faults::Function;
using kestan_faults::Next;
using kestan_faults::Perform;
using kestan_faults::RuleOn;
using kestan_faults::Ruling;

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl50-cpp)
extern "C" {

int mkdir(const char* path, mode_t mode) noexcept {
  static auto* const next = Next<int(const char*, mode_t)>("mkdir");
  return Perform(RuleOn(Function::kMakeFolder, path), -1, [&] { return next(path, mode); });
}

char* mkdtemp(char* pattern) noexcept {
  static auto* const next = Next<char*(char*)>("mkdtemp");
  return Perform(RuleOn(Function::kMakeFolder, pattern), static_cast<char*>(nullptr),
                 [&] { return next(pattern); });
}

int rmdir(const char* path) noexcept {
  static auto* const next = Next<int(const char*)>("rmdir");
  return Perform(RuleOn(Function::kRemove, path), -1, [&] { return next(path); });
}

DIR* opendir(const char* path) {
  static auto* const next = Next<DIR*(const char*)>("opendir");
  DIR* const folder = Perform(RuleOn(Function::kListFolder, path), static_cast<DIR*>(nullptr),
                              [&] { return next(path); });
  if (folder != nullptr) kestan_faults::NoteOpened(dirfd(folder), path);
  return folder;
}

// A failure is told from the end by errno alone.
dirent64* readdir64(DIR* folder) {
  static auto* const next = Next<dirent64*(DIR*)>("readdir64");
  return Perform(RuleOn({Function::kListFolder, dirfd(folder), 0}), static_cast<dirent64*>(nullptr),
                 [&] { return next(folder); });
}

int closedir(DIR* folder) {
  static auto* const next = Next<int(DIR*)>("closedir");
  kestan_faults::NoteClosed(dirfd(folder));
  return next(folder);
}

int access(const char* path, int mode) noexcept {
  static auto* const next = Next<int(const char*, int)>("access");
  return Perform(RuleOn(Function::kLookUp, path), -1, [&] { return next(path, mode); });
}

int stat(const char* path, struct stat* status) noexcept {
  static auto* const next = Next<int(const char*, struct stat*)>("stat");
  return Perform(RuleOn(Function::kLookUp, path), -1, [&] { return next(path, status); });
}

int stat64(const char* path, struct stat64* status) noexcept {
  static auto* const next = Next<int(const char*, struct stat64*)>("stat64");
  return Perform(RuleOn(Function::kLookUp, path), -1, [&] { return next(path, status); });
}

int lstat(const char* path, struct stat* status) noexcept {
  static auto* const next = Next<int(const char*, struct stat*)>("lstat");
  return Perform(RuleOn(Function::kLookUp, path), -1, [&] { return next(path, status); });
}

int lstat64(const char* path, struct stat64* status) noexcept {
  static auto* const next = Next<int(const char*, struct stat64*)>("lstat64");
  return Perform(RuleOn(Function::kLookUp, path), -1, [&] { return next(path, status); });
}

ssize_t pwrite64(int file, const void* bytes, std::size_t count, off64_t offset) {
  static auto* const next = Next<ssize_t(int, const void*, std::size_t, off64_t)>("pwrite64");
  const Ruling ruling = RuleOn({Function::kWrite, file, count});
  const std::size_t most = std::min(count, ruling.most_bytes);
  return Perform(ruling, ssize_t{-1}, [&] { return next(file, bytes, most, offset); });
}

int sync_file_range(int file, off64_t offset, off64_t count, unsigned flags) {
  static auto* const next = Next<int(int, off64_t, off64_t, unsigned)>("sync_file_range");
  return Perform(RuleOn({Function::kStartWriting, file, 0}), -1,
                 [&] { return next(file, offset, count, flags); });
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl50-cpp)
