// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/faults/gdbm_fault_errors.h"

#include <gdbm.h>

#include <map>

namespace kestan_faults {
namespace {

using Errors = std::vector<int>;

Errors Joined(Errors first, const Errors& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// Whatever looks for a key reads buckets and directory.
const Errors& OfReading() {
  static const Errors errors = {
      GDBM_FILE_READ_ERROR, GDBM_FILE_SEEK_ERROR, GDBM_FILE_EOF,
      GDBM_MALLOC_ERROR,    GDBM_BAD_BUCKET,      GDBM_BAD_DIR_ENTRY,
      GDBM_BAD_HASH_ENTRY,  GDBM_BAD_HASH_TABLE,  GDBM_BUCKET_CACHE_CORRUPTED,
      GDBM_NEED_RECOVERY};
  return errors;
}

// A call that changes a record also takes and frees space.
const Errors& OfWriting() {
  static const Errors errors = Joined({GDBM_FILE_WRITE_ERROR, GDBM_BAD_AVAIL}, OfReading());
  return errors;
}

const Errors& OfOpening() {
  static const Errors errors = {
      GDBM_FILE_OPEN_ERROR, GDBM_FILE_WRITE_ERROR, GDBM_FILE_SEEK_ERROR,    GDBM_FILE_READ_ERROR,
      GDBM_FILE_STAT_ERROR, GDBM_FILE_EOF,         GDBM_MALLOC_ERROR,       GDBM_BLOCK_SIZE_ERROR,
      GDBM_EMPTY_DATABASE,  GDBM_CANT_BE_READER,   GDBM_CANT_BE_WRITER,     GDBM_BAD_MAGIC_NUMBER,
      GDBM_BYTE_SWAPPED,    GDBM_BAD_FILE_OFFSET,  GDBM_BAD_OPEN_FLAGS,     GDBM_BAD_HEADER,
      GDBM_BAD_AVAIL,       GDBM_BAD_BUCKET,       GDBM_FILE_TRUNCATE_ERROR};
  return errors;
}

const std::map<std::string, Errors, std::less<>>& Table() {
  static const std::map<std::string, Errors, std::less<>> table = {
      {"open", OfOpening()},
      {"close",
       {GDBM_FILE_CLOSE_ERROR, GDBM_FILE_WRITE_ERROR, GDBM_FILE_SEEK_ERROR, GDBM_FILE_SYNC_ERROR,
        GDBM_NEED_RECOVERY}},
      {"store", Joined(OfWriting(), {GDBM_READER_CANT_STORE, GDBM_CANNOT_REPLACE,
                                     GDBM_MALFORMED_DATA, GDBM_DIR_OVERFLOW})},
      {"fetch", Joined(OfReading(), {GDBM_ITEM_NOT_FOUND})},
      {"delete", Joined(OfWriting(), {GDBM_READER_CANT_DELETE, GDBM_ITEM_NOT_FOUND})},
      {"firstkey", Joined(OfReading(), {GDBM_ITEM_NOT_FOUND})},
      {"nextkey", Joined(OfReading(), {GDBM_ITEM_NOT_FOUND})},
      {"sync",
       {GDBM_FILE_SYNC_ERROR, GDBM_FILE_WRITE_ERROR, GDBM_FILE_SEEK_ERROR, GDBM_NEED_RECOVERY}},
      {"reorganize", Joined(OfWriting(), {GDBM_READER_CANT_REORGANIZE, GDBM_REORGANIZE_FAILED,
                                          GDBM_FILE_OPEN_ERROR, GDBM_BACKUP_FAILED})},
      {"setopt",
       {GDBM_OPT_BADVAL, GDBM_OPT_ALREADY_SET, GDBM_MALLOC_ERROR, GDBM_FILE_STAT_ERROR,
        GDBM_NEED_RECOVERY}},
  };
  return table;
}

}  // namespace

const std::vector<std::string>& FaultyFunctions() {
  static const std::vector<std::string> functions = [] {
    std::vector<std::string> names;
    for (const auto& [name, errors] : Table()) names.push_back(name);
    return names;
  }();
  return functions;
}

const std::vector<int>& ErrorsOf(std::string_view function) {
  return Table().find(function)->second;
}

}  // namespace kestan_faults
