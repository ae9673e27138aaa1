// SPDX-License-Identifier: GPL-3.0-or-later
// From a result set to the lines that a host shows.
#ifndef KESTAN_QUERY_LISTING_H_
#define KESTAN_QUERY_LISTING_H_

#include <kestan/query/name_table.h>
#include <kestan/query/result_set.h>
#include <kestan/storage/database.h>
#include <kestan/text/scratch_text.h>

namespace kestan {

// Lists `set`: a line "PERCENT NAME" for each document that is not removed and has a name, by
// ascending document code. The percentage is of the best score listed. Names come from `names`,
// which is that of `store`.
//   Returns  the lines, in `*text`.
char* ListMatches(Database& store, const ResultSet& set, NameTable* names, ScratchBuffer* text);

}  // namespace kestan

#endif  // KESTAN_QUERY_LISTING_H_
