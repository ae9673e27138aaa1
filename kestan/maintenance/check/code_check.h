// SPDX-License-Identifier: GPL-3.0-or-later
// Checks that the system records of an index agree about documents and codes.
#ifndef KESTAN_MAINTENANCE_CHECK_CODE_CHECK_H_
#define KESTAN_MAINTENANCE_CHECK_CODE_CHECK_H_

#include <kestan/format/id_list.h>
#include <kestan/maintenance/check/tables.h>
#include <kestan/maintenance/report/findings.h>

namespace kestan {

// Returns the codes that document and name records give to documents, without code 0.
CodeSet CodesInUse(const IndexTables& tables);

// Reports unreadable records, and system records of another length than the engine writes.
void CheckLengths(const IndexTables& tables, Findings* findings);

// Reports contradictions between system records. The tables must be complete.
void CheckCodes(const IndexTables& tables, Findings* findings);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_CHECK_CODE_CHECK_H_
