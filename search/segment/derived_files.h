// What stands beside the index file of a segment, made again from it.
#ifndef KESTAN_SEARCH_SEGMENT_DERIVED_FILES_H_
#define KESTAN_SEARCH_SEGMENT_DERIVED_FILES_H_

#include <kestan/search/status.h>

#include <cstdint>
#include <string>

namespace kestan::search {

// The bytes of N.terms and N.documents, as SegmentWriter wrote them for N.segment.
//
// Two things are not in the index file. A document whose words were refused as keys may count fewer
// words than it did. And where a record was moved by hand, its place is left out, so that searches
// read it through gdbm.
struct DerivedFiles {
  std::uint32_t documents = 0;
  bool with_positions = true;
  std::string terms;
  std::string table;
};

// Reads all of the index file at `path`, which SegmentWriter wrote: its codes have no holes.
//   Returns  kDamaged if records are missing or contradict each other; kVersion, kSystem.
Result<DerivedFiles> DeriveFiles(const std::string& path);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SEGMENT_DERIVED_FILES_H_
