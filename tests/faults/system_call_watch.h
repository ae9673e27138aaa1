// SPDX-License-Identifier: GPL-3.0-or-later
// A witness of the system calls for the files of one folder. A program that links it in defines the
// functions of the C library that libgdbm calls, so that gdbm's calls pass through it on their way
// to the system: they can be counted, made to fail, cut short, or be the last of their process.
#ifndef KESTAN_TESTS_FAULTS_SYSTEM_CALL_WATCH_H_
#define KESTAN_TESTS_FAULTS_SYSTEM_CALL_WATCH_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace kestan_faults {

enum class Function : std::uint8_t {
  kOpen,  // mkstemp too
  kClose,
  kStat,
  kLock,
  kRead,  // pread too
  kWrite,
  kSeek,
  kTruncate,
  kSync,
  kMap,
  kMapSync,
  kRename,
  kMode,
  kOwner,
  kRemove,  // rmdir too
  kMakeFolder,
  kListFolder,  // opendir, readdir
  kLookUp,      // access, stat, lstat
  kStartWriting,
};

constexpr std::size_t kFunctions = 19;

// Returns the function's name in the C library.
const char* NameOf(Function function);

// Returns whether the function changes files or waits until they are on the disk.
bool IsWriteLike(Function function);

struct SystemCall {
  Function function;
  int file;           // its descriptor; -1 where the call has none
  std::size_t bytes;  // that a read or a write is asked to move; 0 for other functions
};

// How a call proceeds.
struct Ruling {
  int error = 0;                      // 0: it goes through; else it only reports this error
  std::size_t most_bytes = SIZE_MAX;  // that a read or a write moves
};

using CallRule = std::function<Ruling(const SystemCall&)>;

// Asks `rule` about each call for a file below `folder` from now on, until the process ends. What
// the rule itself calls goes through. The first write that does not move all its bytes, for
// whatever reason, calls `on_shortfall`.
void WatchCalls(const std::string& folder, CallRule rule, std::function<void()> on_shortfall = {});

// Returns how many of the files that were opened under the watch are still open.
int WatchedFilesOpen();

// ---- For the stand-ins of the C library's functions ----

// Return how a call has to proceed. It goes through if its file is not watched.
Ruling RuleOn(const SystemCall& call);
Ruling RuleOn(Function function, std::string_view path);

void NoteOpened(int file, std::string_view path);
void NoteClosed(int file);
void NoteShortWrite(int file);

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_SYSTEM_CALL_WATCH_H_
