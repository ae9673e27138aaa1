// SPDX-License-Identifier: GPL-3.0-or-later
// What an index keeps of a document.
#ifndef KESTAN_SEARCH_INDEX_DOCUMENTS_DOCUMENT_INFO_H_
#define KESTAN_SEARCH_INDEX_DOCUMENTS_DOCUMENT_INFO_H_

#include <kestan/search/document_cursor.h>
#include <kestan/search/status.h>

#include "search/segment/segment.h"

namespace kestan::search {

// Returns what `segment` keeps of its document `code`.
//   Returns  kDamaged.
Result<DocumentInfo> InfoOf(const Segment& segment, Code code);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_DOCUMENTS_DOCUMENT_INFO_H_
