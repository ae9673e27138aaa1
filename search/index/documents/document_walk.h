// SPDX-License-Identifier: GPL-3.0-or-later
// All documents of a snapshot, one after the other.
#ifndef KESTAN_SEARCH_INDEX_DOCUMENTS_DOCUMENT_WALK_H_
#define KESTAN_SEARCH_INDEX_DOCUMENTS_DOCUMENT_WALK_H_

#include <kestan/search/document_cursor.h>
#include <kestan/search/status.h>

#include <cstddef>
#include <utility>

#include "search/segment/snapshot.h"

namespace kestan::search {

// What a DocumentCursor is made of.
class DocumentWalk {
 public:
  explicit DocumentWalk(Snapshot snapshot) : snapshot_(std::move(snapshot)) {}

  // As DocumentCursor::Next().
  //   Throws   std::bad_alloc.
  Result<const DocumentInfo*> Next();

 private:
  const Snapshot snapshot_;
  std::size_t segment_ = 0;
  std::size_t code_ = 0;  // of the document that was given last; 0: none of this segment
  DocumentInfo info_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_DOCUMENTS_DOCUMENT_WALK_H_
