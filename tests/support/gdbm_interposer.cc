// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/gdbm_interposer.h"

#include <cstring>

namespace kestan_tests {
namespace {

// Makes `call` through the interposer. Returns its result, or `failed`.
template <typename Result, typename Call>
Result Make(const GdbmRequest& request, Result failed, const Call& call) {
  Result result = failed;
  const auto make = [&result, &call] { result = call(); };
  return ProgramsInterposer().Make(request, std::ref(make)) ? result : failed;
}

}  // namespace

bool GdbmInterposer::Make(const GdbmRequest&, const std::function<void()>& call) {
  call();
  return true;
}

GDBM_FILE GdbmInterposer::Open(const GdbmOpening&, const std::function<GDBM_FILE()>& open) {
  GDBM_FILE file = nullptr;
  const auto make = [&file, &open] { file = open(); };
  return Make({"open"}, std::ref(make)) ? file : nullptr;
}

datum GdbmInterposer::Fetched(datum, datum found) { return found; }

}  // namespace kestan_tests

// The linker redirects every call of gdbm_NAME to __wrap_gdbm_NAME, and __real_gdbm_NAME to
// gdbm_NAME.
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
  const auto open = [=] { return __real_gdbm_open(path, block_bytes, flags, mode, fatal); };
  return kestan_tests::ProgramsInterposer().Open({path, block_bytes, flags, mode, fatal != nullptr},
                                                 std::ref(open));
}

int __wrap_gdbm_close(GDBM_FILE file) {
  return kestan_tests::Make({"close", file}, -1, [=] { return __real_gdbm_close(file); });
}

int __wrap_gdbm_store(GDBM_FILE file, datum key, datum value, int flag) {
  return kestan_tests::Make({"store", file, key, value}, -1,
                            [=] { return __real_gdbm_store(file, key, value, flag); });
}

datum __wrap_gdbm_fetch(GDBM_FILE file, datum key) {
  const datum found = kestan_tests::Make({"fetch", file, key}, datum{},
                                         [=] { return __real_gdbm_fetch(file, key); });
  return found.dptr != nullptr ? kestan_tests::ProgramsInterposer().Fetched(key, found) : found;
}

int __wrap_gdbm_delete(GDBM_FILE file, datum key) {
  return kestan_tests::Make({"delete", file, key}, -1,
                            [=] { return __real_gdbm_delete(file, key); });
}

datum __wrap_gdbm_firstkey(GDBM_FILE file) {
  return kestan_tests::Make({"firstkey", file}, datum{},
                            [=] { return __real_gdbm_firstkey(file); });
}

datum __wrap_gdbm_nextkey(GDBM_FILE file, datum key) {
  return kestan_tests::Make({"nextkey", file, key}, datum{},
                            [=] { return __real_gdbm_nextkey(file, key); });
}

int __wrap_gdbm_sync(GDBM_FILE file) {
  return kestan_tests::Make({"sync", file}, -1, [=] { return __real_gdbm_sync(file); });
}

int __wrap_gdbm_reorganize(GDBM_FILE file) {
  return kestan_tests::Make({"reorganize", file}, -1, [=] { return __real_gdbm_reorganize(file); });
}

int __wrap_gdbm_setopt(GDBM_FILE file, int option, void* value, int size) {
  std::size_t buckets = 0;
  if (option == GDBM_SETCACHESIZE && size == sizeof buckets) {
    std::memcpy(&buckets, value, sizeof buckets);
    buckets = kestan_tests::ProgramsInterposer().CacheBuckets(buckets);
    value = &buckets;
  }
  return kestan_tests::Make({"setopt", file}, -1,
                            [=] { return __real_gdbm_setopt(file, option, value, size); });
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
