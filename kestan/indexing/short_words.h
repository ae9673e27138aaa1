// SPDX-License-Identifier: GPL-3.0-or-later
// Purges short words, whose postings no shrink purges: words of one byte, and words of two bytes
// that end in '-'.
#ifndef KESTAN_INDEXING_SHORT_WORDS_H_
#define KESTAN_INDEXING_SHORT_WORDS_H_

#include <kestan/storage/database.h>

namespace kestan {

// Takes the postings of free codes out of the records of all short words; with `removed_too`, those
// of removed documents as well. `store` is the one that the engine itself uses.
//   Returns  0; -1 without a file; -2, with nothing changed, if a damaged record has postings of a
//            reusable code; or gdbm's number of a read or write failure.
int PurgePostingsOfShortWords(Database& store, bool removed_too);

}  // namespace kestan

#endif  // KESTAN_INDEXING_SHORT_WORDS_H_
