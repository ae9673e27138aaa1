// SPDX-License-Identifier: GPL-3.0-or-later
// What a repair says: every sentence of it.
#ifndef KESTAN_MAINTENANCE_REPAIR_REPAIR_REPORT_H_
#define KESTAN_MAINTENANCE_REPAIR_REPAIR_REPORT_H_

#include <kestan/maintenance/repair.h>
#include <kestan/maintenance/repair/codes.h>
#include <kestan/maintenance/repair/count_postings.h>
#include <kestan/maintenance/repair/documents.h>
#include <kestan/maintenance/repair/system_records.h>
#include <kestan/maintenance/report/findings.h>
#include <kestan/maintenance/salvage/salvage.h>

namespace kestan {

void ReportDamage(const Salvage::Damage& damage, Findings* findings);
void ReportSystemRecords(const SystemRecords& system, Findings* findings);
void ReportOptions(const InferredOptions& options, Findings* findings);
void ReportCounter(const SystemRecords& system, const AssignedCodes& codes, Findings* findings);

// What decides how complete each document is.
struct DocumentEvidence {
  // Returns whether the document was added after the last flush, which would have written the
  // counter and the list of reusable codes.
  bool IsYoungerThanFlush(Code code) const;

  const RepairedDocuments& documents;
  const PostingCounts& counts;
  const SystemRecords& system;
  const CodeSet& retired;
  const CodeSet& orphans;
  bool is_damaged;  // the file is, or some posting record
};

// Reports every document and counts it in `*result`.
void ReportDocuments(const DocumentEvidence& evidence, Findings* findings, RepairResult* result);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPAIR_REPAIR_REPORT_H_
