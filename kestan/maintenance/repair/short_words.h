// The words whose postings a shrink passes over and that any text has: those of one byte, and those
// of two whose second byte is '-'.
#ifndef KESTAN_MAINTENANCE_REPAIR_SHORT_WORDS_H_
#define KESTAN_MAINTENANCE_REPAIR_SHORT_WORDS_H_

#include <kestan/storage/database.h>

namespace kestan {

// What Kestan::PurgeShortWords does, on the index's own store.
int PurgeShortWords(Database& store, bool removed_too);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPAIR_SHORT_WORDS_H_
