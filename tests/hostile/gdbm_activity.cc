#include "tests/hostile/gdbm_activity.h"

#include <gdbm.h>
#include <sys/mman.h>

#include <cstdlib>

namespace kestan_hostile {
namespace {

// The name of a function, in memory that a process shares with its children; null between calls.
// The names lie at the same address in all of them.
const char* volatile* Noted() {
  static void* const memory =
      mmap(nullptr, sizeof(const char*), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) std::abort();
  return static_cast<const char* volatile*>(memory);
}

// Notes a function from its call to its return.
class Note {
 public:
  explicit Note(const char* function) { *Noted() = function; }
  ~Note() { *Noted() = nullptr; }
  Note(const Note&) = delete;
  Note& operator=(const Note&) = delete;
};

}  // namespace

void ForgetGdbmActivity() { *Noted() = nullptr; }

std::string GdbmActivity() {
  const char* const function = *Noted();
  return function != nullptr ? function : "";
}

}  // namespace kestan_hostile

// The linker leads every call of gdbm_NAME to __wrap_gdbm_NAME, and __real_gdbm_NAME to gdbm_NAME.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" {

using FatalCallback = void (*)(const char*);

GDBM_FILE __real_gdbm_open(const char*, int, int, int, FatalCallback);
int __real_gdbm_close(GDBM_FILE);
int __real_gdbm_store(GDBM_FILE, datum, datum, int);
datum __real_gdbm_fetch(GDBM_FILE, datum);
int __real_gdbm_delete(GDBM_FILE, datum);
datum __real_gdbm_firstkey(GDBM_FILE);
datum __real_gdbm_nextkey(GDBM_FILE, datum);
int __real_gdbm_sync(GDBM_FILE);
int __real_gdbm_reorganize(GDBM_FILE);
int __real_gdbm_setopt(GDBM_FILE, int, void*, int);

GDBM_FILE __wrap_gdbm_open(const char* path, int block_bytes, int flags, int mode,
                           FatalCallback fatal) {
  const kestan_hostile::Note note("open");
  return __real_gdbm_open(path, block_bytes, flags, mode, fatal);
}

int __wrap_gdbm_close(GDBM_FILE file) {
  const kestan_hostile::Note note("close");
  return __real_gdbm_close(file);
}

int __wrap_gdbm_store(GDBM_FILE file, datum key, datum value, int flag) {
  const kestan_hostile::Note note("store");
  return __real_gdbm_store(file, key, value, flag);
}

datum __wrap_gdbm_fetch(GDBM_FILE file, datum key) {
  const kestan_hostile::Note note("fetch");
  return __real_gdbm_fetch(file, key);
}

int __wrap_gdbm_delete(GDBM_FILE file, datum key) {
  const kestan_hostile::Note note("delete");
  return __real_gdbm_delete(file, key);
}

datum __wrap_gdbm_firstkey(GDBM_FILE file) {
  const kestan_hostile::Note note("firstkey");
  return __real_gdbm_firstkey(file);
}

datum __wrap_gdbm_nextkey(GDBM_FILE file, datum key) {
  const kestan_hostile::Note note("nextkey");
  return __real_gdbm_nextkey(file, key);
}

int __wrap_gdbm_sync(GDBM_FILE file) {
  const kestan_hostile::Note note("sync");
  return __real_gdbm_sync(file);
}

int __wrap_gdbm_reorganize(GDBM_FILE file) {
  const kestan_hostile::Note note("reorganize");
  return __real_gdbm_reorganize(file);
}

int __wrap_gdbm_setopt(GDBM_FILE file, int option, void* value, int size) {
  const kestan_hostile::Note note("setopt");
  return __real_gdbm_setopt(file, option, value, size);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
