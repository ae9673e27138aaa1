// Which documents an index has, if its document and name records do not agree or are not all there.
#ifndef KESTAN_MAINTENANCE_REPAIR_DOCUMENT_REPAIR_H_
#define KESTAN_MAINTENANCE_REPAIR_DOCUMENT_REPAIR_H_

#include <kestan/format/id_list.h>
#include <kestan/format/posting.h>
#include <kestan/storage/memory.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestan {

// What a "d-" record says.
struct DocumentClaim {
  std::string_view name;
  std::uint32_t timestamp = 0;
  Code code = 0;  // 0 if the record cannot be one
  bool is_current = false;
};

// What a "c-" record says.
struct NameClaim {
  std::string_view name;
  Code code = 0;
  bool is_current = false;
};

// Returns the highest code of the claims plus 1.
std::size_t EndOfCodes(const Vector<NameClaim>& names);

struct RepairedDocument {
  std::string_view name;
  std::uint32_t timestamp = 0;
  Code code = 0;
};

struct LostDocument {
  std::string_view name;
  const char* reason;
};

// Names are borrowed from the claims.
struct RepairedDocuments {
  Vector<RepairedDocument> documents;  // no name and no code twice; by ascending names
  Vector<LostDocument> lost;           // names that no code is left for
};

// Makes documents of claims, of which no two have the same key.
//
// Records that agree make a document. Then:
// - A name whose code has no name record keeps its code; of several, the one that is current and
// was
//   added last.
// - A name whose code names another document that has no document record of its own has been
// renamed
//   by a host that was ended before it wrote the name record.
// - Any other name record makes a document.
//
// Claims that are not current yield to all that are, and count for nothing if their code is in
// `retired`: the document was removed.
RepairedDocuments RepairDocuments(Vector<DocumentClaim> documents, const Vector<NameClaim>& names,
                                  const CodeSet& retired);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPAIR_DOCUMENT_REPAIR_H_
