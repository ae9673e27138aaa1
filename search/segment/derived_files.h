// SPDX-License-Identifier: GPL-3.0-or-later
// What stands beside the index file of a segment, made again from it.
#ifndef KESTAN_SEARCH_SEGMENT_DERIVED_FILES_H_
#define KESTAN_SEARCH_SEGMENT_DERIVED_FILES_H_

#include <kestan/search/status.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "search/segment/document_table.h"
#include "search/segment/edits.h"

namespace kestan::search {

// The bytes of N.terms and N.documents, as SegmentWriter wrote them for N.segment.
//
// Two things are not in the index file. A document whose words were refused as keys may count fewer
// words than it did. And where a record was moved by hand, its place is left out, so that searches
// read it through gdbm.
struct DerivedFiles {
  FileSummary segment;  // of the index file
  std::uint32_t documents = 0;
  bool with_positions = true;
  std::string terms;
  std::string table;
  Edits edits{0};  // of a loose file: removes the codes that no document has
};

// Reads all of the index file at `path`, which SegmentWriter wrote: its codes have no holes.
//   Returns  kDamaged if records are missing or contradict each other; kVersion, kSystem.
Result<DerivedFiles> DeriveFiles(const std::string& path);

// What is known of a document from elsewhere.
struct KnownDocument {
  bool is_known = false;
  std::uint32_t words = 0;
  std::array<bool, kDocumentFields> fields = {};  // which texts it has
};

// The same for a loose file: one that was a segment, and whose records gdbm has written again. They
// may lie anywhere, so that the files name no places, and codes may have holes. `known`, by code,
// may be shorter.
Result<DerivedFiles> DeriveLooseFiles(const std::string& path,
                                      const std::vector<KnownDocument>& known);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SEGMENT_DERIVED_FILES_H_
