// What of a damaged posting record can be believed.
#ifndef KESTAN_MAINTENANCE_REPAIR_POSTING_REPAIR_H_
#define KESTAN_MAINTENANCE_REPAIR_POSTING_REPAIR_H_

#include <kestan/format/id_list.h>
#include <kestan/format/posting.h>
#include <kestan/format/posting_list.h>
#include <kestan/format/record_kind.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/storage/memory.h>

#include <cstddef>
#include <cstdint>

namespace kestan {

// An entry that is all there. Small, for a record may have a billion.
struct WholePosting {
  std::size_t units() const { return positions == 0 ? 1 : std::size_t{2} + positions; }

  std::uint32_t first_unit;
  Code code;
  std::uint16_t positions;  // 0 only where no positions are kept
};

// Finds the whole entries of posting records.
//
// Reading stops making sense at the first damaged number of positions, but entries behind the
// damage are whole. An entry is told by a code that documents can have, by positions that ascend,
// and by where it ends: at another entry or at the end of the record. So of all ways to read a
// damaged record, the one is taken that makes most sense of most units.
class PostingRepair {
 public:
  // Borrows both, which may change between calls. `rules.highest` is the highest code that any
  // document can have. In `wrapping` are the codes of documents of more than 65535 words, whose
  // positions need not ascend.
  PostingRepair(const PostingRules& rules, const CodeSet& wrapping)
      : rules_(rules), wrapping_(wrapping) {}

  // Finds the entries of `record`. Where it `may_be_old`, it is one that no shrink purges: an entry
  // may be that of an earlier document of more than 65535 words, with the same code.
  //   Returns  whether the record is nothing but whole entries.
  bool Read(const DBDatum& record, bool may_be_old = false);

  // Tells whether the record is that; if it is not, what is found means nothing.
  bool ReadsWhole(const DBDatum& record, bool may_be_old = false);

  // What was found, in the order of the record.
  const Vector<WholePosting>& entries() const { return entries_; }

  // Leaves out those that `is_unwanted`.
  template <typename IsUnwanted>
  void Drop(IsUnwanted is_unwanted) {
    auto kept = entries_.begin();
    for (const WholePosting& entry : entries_) {
      if (!is_unwanted(entry)) *kept++ = entry;
    }
    entries_.erase(kept, entries_.end());
  }

 private:
  bool IsSound(const DBDatum& record, const Posting& entry, bool may_be_old) const;
  void ReadAround(const DBDatum& record, std::size_t from);
  bool IsPossible(Code code) const { return code != 0 && code <= rules_.highest; }
  std::size_t UnitsAt(const DBDatum& record, std::size_t unit) const;
  std::uint32_t ScoreOf(const DBDatum& record, std::size_t unit, std::size_t taken) const;
  static bool IsAscending(const DBDatum& record, std::size_t first, std::size_t count, bool wraps);

  const PostingRules& rules_;
  const CodeSet& wrapping_;
  Vector<WholePosting> entries_;
  UnfilledVector<std::uint16_t> ascending_;  // for each unit: how many from it on ascend
  UnfilledVector<std::uint32_t> score_;      // for each unit: of the best reading from it on
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPAIR_POSTING_REPAIR_H_
