// SPDX-License-Identifier: GPL-3.0-or-later
// Whether the records of an index agree with each other.
#ifndef KESTAN_MAINTENANCE_CHECK_H_
#define KESTAN_MAINTENANCE_CHECK_H_

#include <kestan/maintenance/findings.h>
#include <kestan/maintenance/lines.h>
#include <kestan/storage/database.h>
#include <kestan/storage/export.h>
#include <kestan/storage/store_error.h>

#include <cstdint>

namespace kestan {

struct CheckResult {
  std::uint64_t faults = 0;  // what the engine never writes by itself, or answers wrongly for
  std::uint64_t notes = 0;   // what harms nothing but may be worth a look
  StoreError file_error = StoreError::kNone;  // what is wrong with the file itself
};

// Looks at every record of `store`, which is open for reading or writing and has no changes of an
// engine's that wait elsewhere, and hands a line to `report` for each inconsistency:
//
//   KEY: what is wrong
//   KEY: note: what is worth a look
//
// Bytes of the key that are no printable ASCII, and backslashes, are spelled \xHH. What is wrong
// with the file itself has the key "index file" and comes last. Changes nothing, but makes `store`
// flush. An empty `report` only counts. Where records cannot be read, what depends on all of them
// is not judged. A file whose records have more bytes together than it has, as they do only where
// they share them, is not read to the end, and its error is StoreError::kBadHashTable.
//
// Looks at the bytes of the file too, through a mapping, as CheckStructure() does.
//   Returns  how much it found; kNotOpen as the file's error if no file is open, which the store
//            says.
//   Cost     two walks over the file, two passes over its buckets, and a read for each word with
//            capitals. Memory for the names of all documents, for 1,000 records or 16 MiB of them,
//            for 3 MiB of counts, and for 512 Ki records, buckets and pieces of free space, 24
//            bytes each. Of a file with more, one part is looked at after the other, with a pass
//            over its buckets for each.
KESTAN_EXPORT CheckResult CheckIndex(Database& store, const TakeLine& report);

// Whether a document may have the code of an earlier one, of which postings may be left in records
// that no shrink purges: those of one-byte words, and of words whose second byte is a hyphen.
enum class CodeReuse : std::uint8_t {
  kPossible,  // in any index
  kNever,     // in a file that IndexBuilder has made and nobody has changed
};

// The same, with findings as values.
KESTAN_EXPORT CheckResult CheckIndexWithFindings(Database& store, const TakeFinding& report,
                                                 CodeReuse reuse = CodeReuse::kPossible);

// Looks whether a change may trust the file of `store`: whether every record that a walk shows is
// found by its key, and whether header, directory, buckets, records and free space share no byte. A
// damaged element of a bucket leaves a record that First() and Next() show and Get() does not find,
// so that whoever changes the index takes it for missing and writes another beside it; what counts
// as free and is in use, gdbm overwrites. Goes by the bytes of the file: what waits in the store's
// cache is not seen. Hands a line to `report` for each fault, as CheckIndex() does, whose part this
// is.
//   Returns  the number of faults, 0 if there are none; also one if the file cannot be mapped. -1
//            if no file is open, which the store says.
//   Cost     reads each bucket twice and each key once, through a mapping of the file, and sorts
//            what lies in it: some 40 ms for 13,000 words and 31,000 documents. Takes memory as
//            CheckIndex() does for that.
KESTAN_EXPORT std::int64_t CheckStructure(const Database& store, const TakeLine& report);

// The same, with findings as values.
KESTAN_EXPORT std::int64_t CheckStructureWithFindings(const Database& store,
                                                      const TakeFinding& report);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_CHECK_H_
