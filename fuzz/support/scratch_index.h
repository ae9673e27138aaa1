// SPDX-License-Identifier: GPL-3.0-or-later
// An index file that each execution makes again, and the engine's buffer as in a new process.
#ifndef KESTAN_FUZZ_SUPPORT_SCRATCH_INDEX_H_
#define KESTAN_FUZZ_SUPPORT_SCRATCH_INDEX_H_

#include <gdbm.h>
#include <kestan/engine/shared_state.h>

#include <string>
#include <utility>
#include <vector>

#include "fuzz/support/reporting.h"
#include "tests/support/index_test.h"

namespace kestan_fuzz {

// The temporary directory of this process.
inline const kestan_tests::TempDir& Folder() {
  static const kestan_tests::TempDir folder;
  return folder;
}

using RecordList = std::vector<std::pair<std::string, std::string>>;

using kestan_tests::GdbmDatum;

// Makes the file at `path` an index that holds `records` and nothing else. If several have the same
// key, the last one stays.
inline void MakeIndex(const std::string& path, const RecordList& records) {
  GDBM_FILE file = gdbm_open(path.c_str(), 512, GDBM_NEWDB | GDBM_NOMMAP, 0644, nullptr);
  Require(file != nullptr, "cannot make an index file");
  for (const auto& [key, value] : records) {
    gdbm_store(file, GdbmDatum(key), GdbmDatum(value), GDBM_REPLACE);
  }
  gdbm_close(file);
}

// Returns the value of `key` in the file at `path`, which may be open elsewhere and must have been
// flushed; empty if there is none.
inline std::string PeekAt(const std::string& path, const std::string& key) {
  GDBM_FILE file = gdbm_open(path.c_str(), 0, GDBM_READER | GDBM_NOLOCK | GDBM_NOMMAP, 0, nullptr);
  if (file == nullptr) return std::string();
  const datum value = gdbm_fetch(file, GdbmDatum(key));
  std::string bytes;
  if (value.dptr != nullptr) bytes.assign(value.dptr, static_cast<std::size_t>(value.dsize));
  std::free(value.dptr);
  gdbm_close(file);
  return bytes;
}

// Whether the next document would get the code 0, which ends the process by design. Flushes, to
// see in the file what the engine holds.
inline bool WouldReuseCodeZero(Kestan& engine, const std::string& path) {
  engine.FlushIndex();
  const std::string codes = PeekAt(path, "g-avail");
  const std::size_t whole = codes.size() / 2 * 2;
  return whole != 0 && codes[whole - 1] == '\0' && codes[whole - 2] == '\0';
}

// Makes the buffer as small as it was when the process started, so that what one execution does
// depends on its own input alone.
inline void ForgetScratch() {
  kestan::scratch.Release();
  kestan::scratch.bytes = nullptr;
  kestan::scratch.size = 0;
}

}  // namespace kestan_fuzz

#endif  // KESTAN_FUZZ_SUPPORT_SCRATCH_INDEX_H_
