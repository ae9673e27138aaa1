#include <kestan/engine/kestan.h>
#include <kestan/storage/memory.h>
#include <kestan/storage/walk/copy_records.h>

#include <cstdio>

int Kestan::CopyIndexTo(const char* path) {
  Database target;
  const int error = target.Open(path, 1);
  if (error != 0) {
    std::fprintf(stderr, "%s: Could not open index file '%s' -- %s", kestan::kEngineName, path,
                 Database::ErrorString(error));
    return -1;
  }
  kestan::CopyRecords(store_, target);
  return target.Close();
}
