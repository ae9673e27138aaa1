// SPDX-License-Identifier: GPL-3.0-or-later
// The documents of an index, one after the other: kestan::search::DocumentCursor.
#ifndef KESTAN_SEARCH_DOCUMENT_CURSOR_H_
#define KESTAN_SEARCH_DOCUMENT_CURSOR_H_

#include <kestan/search/export.h>
#include <kestan/search/status.h>

#include <cstdint>
#include <memory>
#include <string>

namespace kestan::search {

class DocumentWalk;

struct DocumentInfo {
  std::string name;
  std::uint32_t words = 0;  // how many words it has
  std::uint32_t added = 0;  // when it was added or last renamed, in seconds since 1970
  std::string title;
  std::string summary;
  std::string host_data;
};

// Goes through the living documents of a snapshot, index by index in the order of addition as far
// as merging has kept it. It keeps the snapshot of the reader that made it, and outlives that
// reader and its Refresh(). Use it from one thread at a time.
class KESTAN_SEARCH_EXPORT DocumentCursor {
 public:
  DocumentCursor(DocumentCursor&& other) noexcept;
  DocumentCursor& operator=(DocumentCursor&& other) noexcept;
  ~DocumentCursor();

  // Goes to the next document.
  //   Returns  the document, lent until the next call; null after the last one. kDamaged or
  //            kOutOfMemory: the next call tries the same document again.
  Result<const DocumentInfo*> Next();

 private:
  friend class IndexReader;
  explicit DocumentCursor(std::unique_ptr<DocumentWalk> walk) noexcept;
  std::unique_ptr<DocumentWalk> walk_;  // null: there was no memory for it
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_DOCUMENT_CURSOR_H_
