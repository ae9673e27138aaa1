// SPDX-License-Identifier: GPL-3.0-or-later
// The document codes of a damaged index and of the new one.
#ifndef KESTAN_MAINTENANCE_REPAIR_CODES_H_
#define KESTAN_MAINTENANCE_REPAIR_CODES_H_

#include <kestan/format/id_list.h>
#include <kestan/format/posting.h>
#include <kestan/maintenance/repair/documents.h>
#include <kestan/maintenance/repair/system_records.h>
#include <kestan/storage/memory/memory.h>

#include <cstdint>
#include <optional>

namespace kestan {

// The codes met so far in one posting record.
class CodesSeen {
 public:
  void StartRecord() { ++record_; }

  // Returns whether the record did not have `code` before.
  bool Add(Code code) {
    const bool is_new = last_seen_[code] != record_;
    last_seen_[code] = record_;
    return is_new;
  }

 private:
  Vector<std::uint32_t> last_seen_ = Vector<std::uint32_t>(std::size_t{kMaxCode} + 1);  // by code
  std::uint32_t record_ = 0;
};

// Returns the highest code that a document can have: what the counter says, or a document record
// that agrees with its name record, for the counter may not count documents that were added after
// the last flush. Without a counter, the highest of all codes that any record names, among them
// `highest_posted`.
Code HighestCode(const SystemRecords& system, const DocumentCandidates& candidates,
                 Code highest_posted);

// Returns the codes up to `highest` that are listed as reusable or removed.
CodeSet RetiredCodes(const SystemRecords& system, Code highest);

// The codes of the new index. Without a value, it has no such record.
struct AssignedCodes {
  std::optional<Code> counter;
  std::optional<Vector<Code>> reusable;
  std::optional<Vector<Code>> removed;
  CodeSet orphans;  // removed ones that were not listed as such: postings have them
};

// Makes every code up to the counter one that is in use, removed or reusable. `in_use` are those of
// documents, `posted` those in posting records that a shrink purges, `retired` those that
// `system` lists.
AssignedCodes AssignCodes(const CodeSet& in_use, const CodeSet& posted, const CodeSet& retired,
                          const SystemRecords& system);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPAIR_CODES_H_
