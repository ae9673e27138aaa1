// SPDX-License-Identifier: GPL-3.0-or-later
// Stands between a program and gdbm. The library's calls of gdbm, and those of the tests, pass
// through the one GdbmInterposer that the program defines; kestan_interpose_gdbm(TARGET) links it
// in.
#ifndef KESTAN_TESTS_SUPPORT_GDBM_INTERPOSER_H_
#define KESTAN_TESTS_SUPPORT_GDBM_INTERPOSER_H_

#include <gdbm.h>

#include <cstddef>
#include <functional>
#include <string>

namespace kestan_tests {

// A call of gdbm. All bytes belong to the caller.
struct GdbmRequest {
  const char* function;      // without its "gdbm_": "store", "fetch", "delete", "sync", ...
  GDBM_FILE file = nullptr;  // null for "open"
  datum key = {};            // no bytes where the function takes none
  datum value = {};          // of a store
};

// The arguments of gdbm_open.
struct GdbmOpening {
  std::string file;
  int block_bytes = 0;
  int flags = 0;
  int mode = 0;
  bool has_fatal_callback = false;
};

// Passes every call on to gdbm. Derive from it to watch calls or to change what they do.
class GdbmInterposer {
 public:
  virtual ~GdbmInterposer() = default;

  // Makes `call`, or fails in its place.
  //   Returns  whether the caller gets the result of `call`. If not, it gets the failure value of
  //   the
  //            function, and this function has set gdbm's error number.
  virtual bool Make(const GdbmRequest& request, const std::function<void()>& call);

  // Opens a file: `open` calls gdbm. Goes through Make().
  //   Returns  what gdbm_open returns.
  virtual GDBM_FILE Open(const GdbmOpening& opening, const std::function<GDBM_FILE()>& open);

  // Returns what a fetch of `key` answers with when gdbm has found `found`: `found` itself, or
  // other malloc memory in its place, and then `found` is freed.
  virtual datum Fetched(datum key, datum found);

  // Returns how many buckets gdbm caches when the library asks for `asked`.
  virtual std::size_t CacheBuckets(std::size_t asked) { return asked; }
};

// The interposer of the program. Each program that links this one defines it.
GdbmInterposer& ProgramsInterposer();

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SUPPORT_GDBM_INTERPOSER_H_
