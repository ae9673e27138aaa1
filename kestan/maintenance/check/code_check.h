// Whether the system records of an index agree about documents and codes.
#ifndef KESTAN_MAINTENANCE_CHECK_CODE_CHECK_H_
#define KESTAN_MAINTENANCE_CHECK_CODE_CHECK_H_

#include <kestan/format/id_list.h>
#include <kestan/maintenance/check/tables.h>
#include <kestan/maintenance/report/findings.h>

namespace kestan {

// Returns the codes that a document record or a name record gives to a document; never 0.
CodeSet CodesInUse(const IndexTables& tables);

// Reports system records of other lengths than the engine gives them, which need no others to be
// judged, and records that cannot be read.
void CheckLengths(const IndexTables& tables, Findings* findings);

// Reports what the system records say against each other. The tables must be complete.
void CheckCodes(const IndexTables& tables, Findings* findings);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_CHECK_CODE_CHECK_H_
