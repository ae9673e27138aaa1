// Listings of the whole collection.
#ifndef KESTAN_QUERY_STATISTICS_H_
#define KESTAN_QUERY_STATISTICS_H_

#include <kestan/storage/database.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/text/scratch_text.h>

namespace kestan {

// Lists the names of the documents, each followed by a line feed, in the file's order.
//   Returns  the lines, in `*text`; null if the index never had a document or no file is open.
char* ListDocuments(Database& store, ScratchBuffer* text);

// How many documents hold a word, at least and at most. From 0 up to, not including, 1 it is a
// share of the documents; from 1 on a count. A negative `high` is no limit.
struct FrequencyRange {
  double low;
  double high;
};

// Lists the words of that frequency, as ListDocuments() does documents. `reusable_codes` is the
// value of "g-avail". Removed documents count.
//   Returns  as ListDocuments().
char* ListCommonWords(Database& store, const DBDatum& reusable_codes, bool with_positions,
                      FrequencyRange range, ScratchBuffer* text);

}  // namespace kestan

#endif  // KESTAN_QUERY_STATISTICS_H_
