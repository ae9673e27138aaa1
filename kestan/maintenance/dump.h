// SPDX-License-Identifier: GPL-3.0-or-later
// An index as lines of text and back again: the same text on every machine, whatever the file
// around the records looks like there. docs/dump-format.md describes it.
#ifndef KESTAN_MAINTENANCE_DUMP_H_
#define KESTAN_MAINTENANCE_DUMP_H_

#include <kestan/maintenance/lines.h>
#include <kestan/storage/database.h>
#include <kestan/storage/export.h>
#include <kestan/storage/store_error.h>

#include <cstddef>

namespace kestan {

// The most bytes that a line of a dump has, not counting its line feed.
inline constexpr std::size_t kMaxDumpLineBytes = std::size_t{1} << 20;

// Hands every record of `store` to `take`, in order of the keys' bytes, as the lines of a dump.
// Changes that wait to be written are in it. Where a damaged file holds a key twice, the dump has
// the value that look-ups find. Flushes the store now and then. What `take` throws passes through.
//   Returns  StoreError::kNone; kNotOpen if no file is open, with no line given; the error that
//            kept a record from being read; or kBadHashTable where records share their bytes, so
//            that they have more than the file. After an error the dump lacks its end, and
//            LoadIndex() refuses it.
//   Memory   all keys, the longest record, which gdbm holds once more, and some 20 MB.
KESTAN_EXPORT StoreError DumpIndex(Database& store, const TakeLine& take);

// Stores the records of a dump in `target`, which must be open for writing and hold no record.
// Flushes it now and then and at the end. What `give` throws passes through.
//   Returns  true if the dump was whole and every record has reached the file. If not, `complain`
//            gets one line that says why, "line N: WHAT" where a line is to blame, and the target
//            holds some of the records: it is no index and should be thrown away.
//   Memory   the longest record three times at the most, and some 20 MB.
KESTAN_EXPORT bool LoadIndex(const GiveLine& give, Database& target, const TakeLine& complain);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_DUMP_H_
