// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/document_cursor.h>

#include <utility>

#include "search/index/caught.h"
#include "search/index/documents/document_walk.h"

namespace kestan::search {

DocumentCursor::DocumentCursor(std::unique_ptr<DocumentWalk> walk) noexcept
    : walk_(std::move(walk)) {}
DocumentCursor::DocumentCursor(DocumentCursor&& other) noexcept = default;
DocumentCursor& DocumentCursor::operator=(DocumentCursor&& other) noexcept = default;
DocumentCursor::~DocumentCursor() = default;

Result<const DocumentInfo*> DocumentCursor::Next() {
  if (walk_ == nullptr) return Status(StatusCode::kOutOfMemory, "out of memory");
  return Caught("", [this] { return walk_->Next(); });
}

}  // namespace kestan::search
