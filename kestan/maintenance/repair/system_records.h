// SPDX-License-Identifier: GPL-3.0-or-later
// The records that an index has one of: code counter, code lists and option flags.
#ifndef KESTAN_MAINTENANCE_REPAIR_SYSTEM_RECORDS_H_
#define KESTAN_MAINTENANCE_REPAIR_SYSTEM_RECORDS_H_

#include <kestan/format/posting.h>
#include <kestan/maintenance/salvage/salvage.h>
#include <kestan/storage/dbdatum.h>

#include <cstdint>
#include <optional>

namespace kestan {

// Values are borrowed from the salvage.
struct SystemRecords {
  std::optional<DBDatum> counter;  // of its own length, or none
  std::optional<DBDatum> options;  // of its own length, or none
  std::optional<DBDatum> reusable;
  std::optional<DBDatum> removed;
  std::uint32_t counter_bytes_found = 0;  // before it was cut to its length
  std::uint32_t options_bytes_found = 0;
};

// Finds them. A word with the same key may have appended its postings to the counter or the
// flags; these are cut off. A counter or flags with too few bytes count as missing.
SystemRecords FindSystemRecords(const Salvage& salvage);

struct InferredOptions {
  enum class Basis : std::uint8_t {
    kRecord,    // what the record says
    kPostings,  // the record has flag 1 wrong
    kNoRecord,  // there is no record; of all flags, only flag 1 is known
  };

  bool with_positions() const { return KeepsPositions(flags); }

  std::uint32_t flags = 0;
  Basis basis = Basis::kRecord;
};

// Infers the option flags from their record and from the shapes of the posting records. What the
// record says of flag 1 is believed unless nearly every posting record says otherwise.
InferredOptions InferOptions(const Salvage& salvage, const SystemRecords& found);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPAIR_SYSTEM_RECORDS_H_
