// SPDX-License-Identifier: GPL-3.0-or-later
// Lists of a whole collection: its documents, and its words by how many documents hold them.
#ifndef KESTAN_QUERY_COLLECTION_LISTS_H_
#define KESTAN_QUERY_COLLECTION_LISTS_H_

#include <kestan/query/frequency_range.h>
#include <kestan/storage/database.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/text/scratch_text.h>

#include <cstddef>
#include <functional>
#include <string_view>

namespace kestan {

// Lists the names of the documents, each followed by a line feed, in the file's order.
//   Returns  the lines, in `*text`; null if the index never had a document or no file is open.
char* ListDocumentNames(Database& store, ScratchBuffer* text);

// Calls `visit` with each word of that frequency and the number of its documents, in the file's
// order. `reusable_codes` is the value of "g-avail". Removed documents count. The walk ends at the
// first record that cannot be read, and where `visit` returns false.
//   Returns  0, also if the index never had a document or no file is open; or gdbm's number of the
//            error that ended the walk.
int ForEachCommonWord(
    Database& store, const DBDatum& reusable_codes, bool with_positions, FrequencyRange range,
    const std::function<bool(std::string_view word, std::size_t documents)>& visit);

// Lists these words, as ListDocumentNames() does documents.
//   Returns  as ListDocumentNames().
char* ListCommonWords(Database& store, const DBDatum& reusable_codes, bool with_positions,
                      FrequencyRange range, ScratchBuffer* text);

}  // namespace kestan

#endif  // KESTAN_QUERY_COLLECTION_LISTS_H_
