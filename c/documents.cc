// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/document_cursor.h>

#include <optional>
#include <string_view>
#include <utility>

#include "c/input.h"
#include "c/reader_handle.h"

using kestan::c::Invalid;
using kestan::c::Status;
using kestan::search::DocumentCursor;
using kestan::search::DocumentInfo;
using kestan::search::IndexReader;

// Lists what a cursor finds, or the one document that was found by its name.
struct kestan_documents final : kestan::c::Handle {
  std::optional<DocumentCursor> cursor;
  std::optional<DocumentInfo> found;
  bool is_found_given = false;
  kestan_document_info view = {};
};

namespace {

kestan_document_info ViewOf(const DocumentInfo& document) {
  return {document.name.c_str(),
          document.name.size(),
          document.title.c_str(),
          document.title.size(),
          document.summary.c_str(),
          document.summary.size(),
          document.host_data.c_str(),
          document.host_data.size(),
          document.words,
          document.added};
}

// Returns the next document, or null after the last.
kestan::search::Result<const DocumentInfo*> Next(kestan_documents* documents) {
  if (documents->cursor) return documents->cursor->Next();
  const bool is_over = std::exchange(documents->is_found_given, true);
  return is_over ? nullptr : &*documents->found;
}

}  // namespace

int kestan_reader_documents(kestan_documents** out, kestan_reader* reader) {
  return kestan::c::AskForHandle(out, reader, [&](kestan_reader&, const IndexReader& index) {
    auto documents = std::make_unique<kestan_documents>();
    documents->cursor.emplace(index.Documents());
    return HandOver(std::move(documents), out);
  });
}

int kestan_reader_find(kestan_documents** out, kestan_reader* reader, const char* name,
                       size_t name_length) {
  return kestan::c::AskForHandle(out, reader, [&](kestan_reader& live, const IndexReader& index) {
    std::string_view view;
    Status status = kestan::c::Read({"the name", name, name_length}, &view);
    if (!status.ok()) return live.Return(std::move(status));
    auto found = index.FindDocument(view);
    if (!found.ok()) return live.Return(found.status());
    auto documents = std::make_unique<kestan_documents>();
    documents->found = std::move(*found);
    return HandOver(std::move(documents), out);
  });
}

int kestan_documents_next(const kestan_document_info** out, kestan_documents* documents) {
  return kestan::c::Use(documents, [&](kestan_documents& live) -> int {
    if (out == nullptr) return live.Return(Invalid("the output is null"));
    const auto next = Next(&live);
    if (!next.ok()) return live.Return(next.status());
    if (*next == nullptr) return KESTAN_ITEROVER;
    live.view = ViewOf(**next);
    *out = &live.view;
    return KESTAN_OK;
  });
}

void kestan_documents_free(kestan_documents* documents) { kestan::c::Free(documents); }
