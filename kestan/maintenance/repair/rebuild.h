// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the new index of a repair.
#ifndef KESTAN_MAINTENANCE_REPAIR_REBUILD_H_
#define KESTAN_MAINTENANCE_REPAIR_REBUILD_H_

#include <kestan/maintenance/repair/classify_records.h>
#include <kestan/maintenance/repair/codes.h>
#include <kestan/maintenance/repair/documents.h>
#include <kestan/maintenance/repair/kept_postings.h>
#include <kestan/maintenance/repair/resolve_overlaps.h>
#include <kestan/maintenance/report/findings.h>
#include <kestan/maintenance/salvage/salvage.h>

#include <cstdint>

namespace kestan {

// What the new index is to hold.
struct RebuildPlan {
  const Salvage& salvage;
  const RepairActions& actions;
  const RepairedDocuments& documents;
  const AssignedCodes& codes;
  const Overlaps& overlaps;
  std::uint32_t flags;
};

struct RebuildResult {
  int error = 0;  // gdbm's number of the first
  std::uint64_t records = 0;
  std::uint64_t dropped = 0;  // records of the salvage
};

// Writes the index into the empty file at `path`. Reports records that do not stay as they are.
RebuildResult Rebuild(const char* path, const RebuildPlan& plan, KeptPostings* kept,
                      Findings* findings);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPAIR_REBUILD_H_
