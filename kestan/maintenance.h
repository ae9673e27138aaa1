// Looking after index files: what is in them and whether it is sound.
#ifndef KESTAN_MAINTENANCE_H_
#define KESTAN_MAINTENANCE_H_

#include <kestan/maintenance/check.h>       // IWYU pragma: export
#include <kestan/maintenance/statistics.h>  // IWYU pragma: export
#include <kestan/maintenance/check.h>   // IWYU pragma: export
#include <kestan/maintenance/repair.h>  // IWYU pragma: export
// What keeps an index in good order and carries it elsewhere, for hosts that look after index files.
#ifndef KESTAN_MAINTENANCE_H_
#define KESTAN_MAINTENANCE_H_

#include <kestan/maintenance/documents.h>  // IWYU pragma: export
#include <kestan/maintenance/dump.h>       // IWYU pragma: export

#endif  // KESTAN_MAINTENANCE_H_
