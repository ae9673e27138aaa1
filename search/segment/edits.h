// SPDX-License-Identifier: GPL-3.0-or-later
// What has changed in a segment since it was written: removed and renamed documents, new titles.
// docs/index-folder.md has every byte.
#ifndef KESTAN_SEARCH_SEGMENT_EDITS_H_
#define KESTAN_SEARCH_SEGMENT_EDITS_H_

#include <kestan/postings.h>
#include <kestan/search/index_writer.h>
#include <kestan/search/status.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "search/files/numbers.h"
#include "search/segment/document_table.h"

namespace kestan::search {

// What has changed of one document that was not removed.
struct DocumentEdit {
  std::optional<std::string> name;
  std::uint32_t renamed = 0;                                       // when, in seconds since 1970
  std::array<std::optional<std::string>, kDocumentFields> fields;  // "": taken away
};

// A segment is never written again; a small file of its edits is, under a new name.
class Edits {
 public:
  // Returns the edits that Encode() has made `bytes` of, for a segment of `documents` documents.
  //   Returns  kDamaged or kVersion, without a file.
  static Result<Edits> Decode(std::string_view bytes, std::size_t documents);
  std::string Encode() const;

  // No edits, for a segment of `documents` documents.
  explicit Edits(std::size_t documents) : removed_(documents + 1) { removed_[0] = true; }

  // `code` must be that of a document, here and below. Forgets other edits of it.
  void Remove(Code code);

  // The document must not be removed, here and below; no other may be renamed to `name`.
  void Rename(Code code, std::string_view name, std::uint32_t now);
  void SetField(Code code, DocumentField field, std::string_view value);

  bool empty() const { return removed_count_ == 0 && edited_.empty(); }

  // Returns whether there is no living document `code`, which may be any number.
  bool IsRemoved(Code code) const { return code >= removed_.size() || removed_[code]; }
  std::size_t removed_count() const { return removed_count_; }

  // Returns what has changed of the document; null for nothing. Lent until the next change.
  const DocumentEdit* EditOf(Code code) const;

  // Finds the document that was renamed to `name` and not removed.
  std::optional<Code> FindRenamed(std::string_view name) const;

 private:
  bool ReadRemoved(ByteReader* reader);
  bool ReadEdited(ByteReader* reader);

  std::vector<bool> removed_;  // by code; also 0, which no document has
  std::size_t removed_count_ = 0;
  std::map<Code, DocumentEdit> edited_;
  std::map<std::string, Code, std::less<>> renamed_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SEGMENT_EDITS_H_
