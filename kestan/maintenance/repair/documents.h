// SPDX-License-Identifier: GPL-3.0-or-later
// Which documents an index has, if its document and name records do not agree or are not all there.
#ifndef KESTAN_MAINTENANCE_REPAIR_DOCUMENTS_H_
#define KESTAN_MAINTENANCE_REPAIR_DOCUMENTS_H_

#include <kestan/format/id_list.h>
#include <kestan/format/posting.h>
#include <kestan/storage/memory/memory.h>

#include <cstdint>
#include <string_view>

namespace kestan {

// What a "d-" record says.
struct DocumentCandidate {
  std::string_view name;
  std::uint32_t timestamp = 0;
  Code code = 0;  // 0 if the record cannot be one
  bool is_current = false;
};

// What a "c-" record says.
struct NameCandidate {
  std::string_view name;
  Code code = 0;
  bool is_current = false;
};

// No two candidates have the same key.
struct DocumentCandidates {
  Vector<DocumentCandidate> documents;
  Vector<NameCandidate> names;
};

struct RepairedDocument {
  std::string_view name;
  std::uint32_t timestamp = 0;
  Code code = 0;
};

struct LostDocument {
  std::string_view name;
  const char* reason;
};

// Names are borrowed from the candidates.
struct RepairedDocuments {
  Vector<RepairedDocument> documents;  // no name and no code twice; by ascending names
  CodeSet codes;                       // theirs
  Vector<LostDocument> lost;           // names that no code is left for
};

// Decides which documents there are.
//
// Records that agree make a document. Then:
// - A name whose code has no name record keeps its code. Of several such names, the one that is
//   current and was added last keeps it.
// - A name whose code names another document, one without a document record of its own, is that
//   document's new name: a host was ended before it wrote the name record.
// - Any other name record makes a document.
//
// Candidates that are not current yield to all that are. Those whose code is in `retired` do not
// count at all: their document was removed.
RepairedDocuments ResolveDocuments(DocumentCandidates candidates, const CodeSet& retired);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPAIR_DOCUMENTS_H_
