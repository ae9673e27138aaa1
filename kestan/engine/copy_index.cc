// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/engine/kestan.h>
#include <kestan/storage/memory/diagnostics.h>
#include <kestan/storage/walk/copy_records.h>

int Kestan::CopyIndexTo(const char* path) {
  Database target;
  const int error = target.Open(path, 1);
  if (error != 0) {
    kestan::PrintDiagnostic("Could not open index file '%s' -- %s", path,
                            Database::ErrorString(error));
    return -1;
  }
  kestan::CopyRecords(store_, target);
  return target.Close();
}
