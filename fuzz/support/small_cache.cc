// The library has gdbm remember 65536 buckets. Here indexes are small and opened a thousand times a
// second, so the table for that would cost more than all the rest; nothing else depends on it.
#include <gdbm.h>

#include <cstddef>

// The linker leads every call of gdbm_setopt to __wrap_gdbm_setopt, and __real_gdbm_setopt to it.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

int __real_gdbm_setopt(GDBM_FILE, int, void*, int);

int __wrap_gdbm_setopt(GDBM_FILE file, int option, void* value, int size) {
  std::size_t buckets = 64;
  if (option == GDBM_SETCACHESIZE) {
    return __real_gdbm_setopt(file, option, &buckets, sizeof buckets);
  }
  return __real_gdbm_setopt(file, option, value, size);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
