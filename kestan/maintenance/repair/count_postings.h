// SPDX-License-Identifier: GPL-3.0-or-later
// What the posting records of a damaged index say of its documents.
#ifndef KESTAN_MAINTENANCE_REPAIR_COUNT_POSTINGS_H_
#define KESTAN_MAINTENANCE_REPAIR_COUNT_POSTINGS_H_

#include <kestan/format/id_list.h>
#include <kestan/format/posting.h>
#include <kestan/format/posting_list.h>
#include <kestan/format/record_kind.h>
#include <kestan/maintenance/repair/classify_records.h>
#include <kestan/maintenance/repair/kept_postings.h>
#include <kestan/maintenance/salvage/salvage.h>
#include <kestan/storage/memory/memory.h>

#include <cstddef>
#include <cstdint>

namespace kestan {

// What the postings of one document say of it. A posting is doubtful if its record may list an
// earlier document with the same code too, as those that no shrink purges do.
struct DocumentStatistics {
  std::uint32_t positions = 0;           // of case-folded words, without doubtful postings
  std::uint32_t doubtful_positions = 0;  // of case-folded words, in doubtful postings
  Position highest = 0;                  // without doubtful postings
  bool has_words = false;
  bool has_own_words = false;  // without doubtful postings
};

struct PostingCounts {
  // By code, for every code there can be.
  Vector<DocumentStatistics> documents = Vector<DocumentStatistics>(std::size_t{kMaxCode} + 1);
  CodeSet posted;                // codes with postings that are not doubtful
  bool is_any_left_out = false;  // some posting record is not kept as it is
};

// Returns the documents of more than 65535 words, whose positions need not ascend. Only they have a
// word at the last position.
CodeSet FindLongDocuments(const Salvage& salvage, const RepairActions& actions,
                          bool with_positions);

// Returns the highest code in valid posting records.
Code HighestCodePosted(const Salvage& salvage, const RepairActions& actions, bool with_positions,
                       const CodeSet& long_documents);

// Counts the postings that are kept.
PostingCounts CountKeptPostings(const Salvage& salvage, const RepairActions& actions,
                                const PostingRules& rules, KeptPostings* kept);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPAIR_COUNT_POSTINGS_H_
