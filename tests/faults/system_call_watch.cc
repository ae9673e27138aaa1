// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/faults/system_call_watch.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kestan_faults {
namespace {

struct Watch {
  std::string folder;
  CallRule rule;
  std::function<void()> on_shortfall;
  std::array<bool, 1024> files = {};  // by descriptor
  bool is_asking = false;             // the rule is being asked: its own calls go through
};

Watch* watch = nullptr;

bool IsWatched(int file) {
  return watch != nullptr && file >= 0 && watch->files.at(static_cast<std::size_t>(file));
}

bool IsWatched(std::string_view path) {
  return watch != nullptr && path.substr(0, watch->folder.size()) == watch->folder;
}

Ruling Ask(const SystemCall& call) {
  if (watch->is_asking) return {};
  watch->is_asking = true;
  const Ruling ruling = watch->rule(call);
  watch->is_asking = false;
  return ruling;
}

}  // namespace

const char* NameOf(Function function) {
  constexpr std::array<const char*, kFunctions> kNames = {
      "open",      "close", "fstat",   "flock", "read",           "write",  "lseek",
      "ftruncate", "fsync", "mmap",    "msync", "rename",         "fchmod", "fchown",
      "unlink",    "mkdir", "readdir", "stat",  "sync_file_range"};
  return kNames.at(static_cast<std::size_t>(function));
}

bool IsWriteLike(Function function) {
  constexpr std::array<Function, 5> kSuch = {Function::kWrite, Function::kTruncate, Function::kSync,
                                             Function::kMapSync, Function::kRename};
  return std::find(kSuch.begin(), kSuch.end(), function) != kSuch.end();
}

void WatchCalls(const std::string& folder, CallRule rule, std::function<void()> on_shortfall) {
  delete watch;
  watch = new Watch{folder, std::move(rule), std::move(on_shortfall)};
}

int WatchedFilesOpen() {
  return static_cast<int>(std::count(watch->files.begin(), watch->files.end(), true));
}

Ruling RuleOn(const SystemCall& call) {
  // A mapping is synced by its address. Nobody but gdbm maps files here.
  const bool is_watched =
      call.function == Function::kMapSync ? watch != nullptr : IsWatched(call.file);
  return is_watched ? Ask(call) : Ruling();
}

Ruling RuleOn(Function function, std::string_view path) {
  return IsWatched(path) ? Ask({function, -1, 0}) : Ruling();
}

void NoteOpened(int file, std::string_view path) {
  if (file >= 0 && IsWatched(path)) watch->files.at(static_cast<std::size_t>(file)) = true;
}

void NoteClosed(int file) {
  if (IsWatched(file)) watch->files.at(static_cast<std::size_t>(file)) = false;
}

void NoteShortWrite(int file) {
  if (!IsWatched(file) || !watch->on_shortfall) return;
  watch->on_shortfall();
  watch->on_shortfall = nullptr;
}

}  // namespace kestan_faults
