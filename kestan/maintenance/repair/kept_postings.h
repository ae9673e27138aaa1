// SPDX-License-Identifier: GPL-3.0-or-later
// Which postings of a salvaged posting record the new index keeps.
#ifndef KESTAN_MAINTENANCE_REPAIR_KEPT_POSTINGS_H_
#define KESTAN_MAINTENANCE_REPAIR_KEPT_POSTINGS_H_

#include <kestan/format/id_list.h>
#include <kestan/format/record_kind.h>
#include <kestan/maintenance/repair/codes.h>
#include <kestan/maintenance/salvage/posting_salvage.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/storage/memory/memory.h>

namespace kestan {

// What is kept of one record, in the order of the record.
struct KeptRecord {
  const Vector<WholePosting>& postings;
  bool is_valid;  // the record was nothing but whole postings
  bool is_all;    // and all of them are kept
};

// Reads one record after the other. What it says of a record does not depend on other records.
class KeptPostings {
 public:
  // Borrows `rules` and `long_documents`, which must not change. `known` are the codes in use,
  // removed or reusable.
  KeptPostings(const PostingRules& rules, const CodeSet& long_documents, const CodeSet& known)
      : postings_(rules, long_documents), known_(known) {}

  // Keeps the whole postings of a record: of words that shrinks purge, one for each code; of other
  // words, all those of known codes. Valid until the next call.
  KeptRecord Read(const DBDatum& key, const DBDatum& value);

 private:
  PostingSalvage postings_;
  const CodeSet known_;
  CodesSeen seen_;
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPAIR_KEPT_POSTINGS_H_
