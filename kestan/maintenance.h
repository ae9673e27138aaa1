// SPDX-License-Identifier: GPL-3.0-or-later
// Looking after index files: checking, measuring, comparing, repairing them, carrying them
// elsewhere.
#ifndef KESTAN_MAINTENANCE_H_
#define KESTAN_MAINTENANCE_H_

#include <kestan/maintenance/check.h>          // IWYU pragma: export
#include <kestan/maintenance/documents.h>      // IWYU pragma: export
#include <kestan/maintenance/dump.h>           // IWYU pragma: export
#include <kestan/maintenance/findings.h>       // IWYU pragma: export
#include <kestan/maintenance/lines.h>          // IWYU pragma: export
#include <kestan/maintenance/repair.h>         // IWYU pragma: export
#include <kestan/maintenance/statistics.h>     // IWYU pragma: export
#include <kestan/storage/walk/same_records.h>  // IWYU pragma: export

#endif  // KESTAN_MAINTENANCE_H_
