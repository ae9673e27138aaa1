// SPDX-License-Identifier: GPL-3.0-or-later
// A new index from what a damaged one still holds.
#ifndef KESTAN_MAINTENANCE_REPAIR_H_
#define KESTAN_MAINTENANCE_REPAIR_H_

#include <kestan/maintenance/findings.h>
#include <kestan/maintenance/lines.h>
#include <kestan/storage/export.h>

#include <cstdint>

namespace kestan {

// How much of the index was saved. Each document is counted once.
struct RepairResult {
  std::uint64_t saved = 0;          // nothing of it is seen to be missing
  std::uint64_t words_missing = 0;  // listed, but positions of its text have no word
  std::uint64_t half_written = 0;   // listed, but its words had not all been written
  std::uint64_t lost = 0;           // a name or a code of it was found, and no more
  std::uint64_t records = 0;        // in the new file
  std::uint64_t dropped = 0;        // records that were found, and contradict the others
  bool was_damaged = false;         // the file itself, not only what its records say
};

// Builds a new index at `new_path` from every record that can be read from the file at
// `damaged_path`, which is only read, without gdbm and without its lock: no host should be writing
// it. Only records that contradict others are dropped. Records that are lost or damaged are
// restored from what others say of them:
//
// - Document and name records are restored from each other. A restored document record has the
//   time 0, which makes hosts that compare times index the document again. Where two documents have
//   the same code, the code's name record decides.
// - Posting records keep their whole postings. Codes that only postings have become removed codes,
//   so that a shrink purges them before they are used again; codes that no record has, reusable.
// - A record such as that of "d-day" is a word's if it has the shape of postings and no name record
//   names a document "day". Damaged word lists keep their words, cut to what is there.
// - Lost option flags are inferred from the shapes of the posting records.
//
// Hands lines to `report`, which may be empty:
//
//   saved: NAME
//   words missing: NAME: at least N of M
//   half-written: NAME: no words | at least N of M words missing
//   lost: NAME | code CODE: why
//   note: what else was restored or dropped
//
// with names spelled as CheckIndex spells keys. A document counts as half-written if it has no
// words at all; or if words are missing and the file is valid, or its code shows that it was added
// after the last flush. Missing words go unnoticed at the end of a text, and where the lower-case
// form of the word is there.
//   Returns  0, and what was found in `*result` (never null); or -1, with the reason as the last
//            line and no new file: `damaged_path` cannot be read or holds no record, there is
//            something at `new_path`, or it cannot be written.
//   Cost     two passes over the records. Memory for the whole damaged file, some 100 bytes for
//            each of its records, and several times its largest posting record.
KESTAN_EXPORT int RepairIndex(const char* damaged_path, const char* new_path,
                              const TakeLine& report, RepairResult* result);

// The same, with findings as values.
KESTAN_EXPORT int RepairIndexWithFindings(const char* damaged_path, const char* new_path,
                                          const TakeFinding& report, RepairResult* result);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPAIR_H_
