// SPDX-License-Identifier: GPL-3.0-or-later
// Postings of several words at one position of a document, which contradict each other.
#ifndef KESTAN_MAINTENANCE_REPAIR_RESOLVE_OVERLAPS_H_
#define KESTAN_MAINTENANCE_REPAIR_RESOLVE_OVERLAPS_H_

#include <kestan/format/id_list.h>
#include <kestan/format/posting.h>
#include <kestan/maintenance/repair/classify_records.h>
#include <kestan/maintenance/repair/count_postings.h>
#include <kestan/maintenance/repair/kept_postings.h>
#include <kestan/maintenance/salvage/salvage.h>
#include <kestan/storage/memory/memory.h>

#include <cstddef>
#include <cstdint>

namespace kestan {

// A posting that the new index leaves out.
struct OverlappingPosting {
  std::size_t record;  // its number among the salvaged ones
  std::uint32_t first_unit;
  Code code;
  std::uint16_t positions;
};

struct Overlaps {
  bool Has(std::size_t record, std::uint32_t first_unit) const;

  bool is_any = false;                  // documents with more words than positions were found
  Vector<OverlappingPosting> postings;  // by ascending record and place in it
};

// Finds the documents that have more case-folded words than positions: a posting of another
// document whose code is damaged counts as theirs. Of two words at one position, the one whose
// record is in doubt is left out, or else the one that comes later.
Overlaps ResolveOverlaps(const Salvage& salvage, const RepairActions& actions,
                         const CodeSet& long_documents, const PostingCounts& counts,
                         KeptPostings* kept);

// Takes the positions of the postings that are left out off the counts.
void Subtract(const Overlaps& overlaps, PostingCounts* counts);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPAIR_RESOLVE_OVERLAPS_H_
