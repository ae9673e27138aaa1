// SPDX-License-Identifier: GPL-3.0-or-later
// What a repair does with each salvaged record.
#ifndef KESTAN_MAINTENANCE_REPAIR_CLASSIFY_RECORDS_H_
#define KESTAN_MAINTENANCE_REPAIR_CLASSIFY_RECORDS_H_

#include <kestan/format/record_kind.h>
#include <kestan/maintenance/repair/documents.h>
#include <kestan/maintenance/salvage/salvage.h>
#include <kestan/storage/memory/memory.h>

#include <cstdint>

namespace kestan {

enum class RepairAction : std::uint8_t {
  kCopy,      // as it is
  kPostings,  // posting by posting: see KeptPostings
  kWordList,  // as far as its words make sense: see ReadWordList()
  kRewrite,   // written again from what all records say: documents, names, codes, options
  kDrop,      // it cannot be what its key says
};

// One for each salvaged record, in their order.
using RepairActions = Vector<RepairAction>;

// Classifies all records by their keys and values alone, not by what other records turn out to
// say. Only where a record "d-" + name may be a word's, the name records decide.
RepairActions ClassifyRecords(const Salvage& salvage, const PostingRules& rules);

// Returns what the document and name records say. A name record that is cut says nothing, for part
// of a name would be another document's.
DocumentCandidates CollectCandidates(const Salvage& salvage, const RepairActions& actions);

// Drops the words whose keys the document and name records of `documents` need.
void DropWordsInTheWay(const Salvage& salvage, const RepairedDocuments& documents,
                       RepairActions* actions);

// Classifies the records again that were to be copied, now that `rules.highest` is known: one with
// the key of no family may be a damaged posting record.
void FindDamagedWords(const Salvage& salvage, const PostingRules& rules, RepairActions* actions);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPAIR_CLASSIFY_RECORDS_H_
