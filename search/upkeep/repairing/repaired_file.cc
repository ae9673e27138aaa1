// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/upkeep/repairing/repaired_file.h"

#include <kestan/index_file.h>

#include <cstdint>

namespace kestan::search {
namespace {

constexpr std::uint64_t kRecordsBetweenFlushes = 1000;

// Returns whether there are so many records, each of which is found by its key. Not every error of
// gdbm's last writes comes out of it.
bool IsWhole(const std::string& path, std::uint64_t records) {
  IndexFile file;
  if (file.Open(path.c_str()) != StoreError::kNone) return false;
  std::uint64_t found = 0;
  DBDatumPtr key;
  Database& store = file.store();
  for (int error = store.First(&key); error == 0 && key.ptr != nullptr; error = store.Next(&key)) {
    if (++found % kRecordsBetweenFlushes == 0) store.Flush();
  }
  key.Free();
  return found == records && store.WalkError() == 0 && kestan::CheckStructure(store, {}) == 0;
}

}  // namespace

Status RepairIndexFile(const std::string& damaged, const std::string& made, const TakeFinding& take,
                       RepairResult* result) {
  Status status;
  const int error = kestan::RepairIndexWithFindings(
      damaged.c_str(), made.c_str(),
      [&](const Finding& finding) {
        if (finding.kind == FindingKind::kCannotRead) {
          status = Status(StatusCode::kDamaged, std::string(finding.text), damaged);
        } else if (finding.kind == FindingKind::kCannotWrite) {
          status = Status(StatusCode::kSystem, std::string(finding.text), made);
        } else {
          take(finding);
        }
      },
      result);
  if (error != 0) return status;
  if (IsWhole(made, result->records)) return {};
  return {StatusCode::kSystem, "not all was written", made};
}

}  // namespace kestan::search
