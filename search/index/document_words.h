// SPDX-License-Identifier: GPL-3.0-or-later
// The words of documents, back in their order.
#ifndef KESTAN_SEARCH_INDEX_DOCUMENT_WORDS_H_
#define KESTAN_SEARCH_INDEX_DOCUMENT_WORDS_H_

#include <kestan/search/index_reader.h>
#include <kestan/search/status.h>

#include <functional>
#include <vector>

#include "search/segment/segment.h"

namespace kestan::search {

// Calls `visit` with each living document of `segment` and its words, as
// IndexReader::ForEachDocumentWithWords() gives them, until it returns false. What it throws passes
// through.
//   Returns  kDamaged if the index file lacks a document of the table, or cannot be read; kSystem.
Status ForEachWithWords(
    const Segment& segment,
    const std::function<bool(Code code, const std::vector<PlacedWord>& words)>& visit);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_DOCUMENT_WORDS_H_
