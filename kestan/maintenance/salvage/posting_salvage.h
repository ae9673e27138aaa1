// SPDX-License-Identifier: GPL-3.0-or-later
// What of a damaged posting record can be believed.
#ifndef KESTAN_MAINTENANCE_SALVAGE_POSTING_SALVAGE_H_
#define KESTAN_MAINTENANCE_SALVAGE_POSTING_SALVAGE_H_

#include <kestan/format/id_list.h>
#include <kestan/format/posting.h>
#include <kestan/format/posting_list.h>
#include <kestan/format/record_kind.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/storage/memory/memory.h>

#include <cstddef>
#include <cstdint>

namespace kestan {

// A posting that is all there. Small, for a record may have a billion.
struct WholePosting {
  std::size_t units() const { return positions == 0 ? 1 : kUnitsBeforePositions + positions; }

  std::uint32_t first_unit;
  Code code;
  std::uint16_t positions;  // 0 only where no positions are kept
};

// Returns the same posting as a reader of its record gives it.
inline Posting AsPosting(const WholePosting& posting) {
  return {posting.first_unit, posting.units(), posting.code, posting.positions};
}

inline EncodedPositions PositionsOf(const DBDatum& record, const WholePosting& posting) {
  return PositionsOf(record, AsPosting(posting));
}

// Finds the whole postings of a posting record that may be damaged.
//
// Reading in order ends at the first damaged number of positions, but postings after the damage are
// whole. A posting is recognised by a code that documents can have, by positions that ascend, and
// by its end, at another posting or at the end of the record. Of all ways to read a damaged record,
// the one is taken that explains most units.
class PostingSalvage {
 public:
  // Borrows both, which may change between calls. `rules.highest` is the highest code that any
  // document can have. `long_documents` are the codes of documents of more than 65535 words, whose
  // positions need not ascend.
  PostingSalvage(const PostingRules& rules, const CodeSet& long_documents)
      : rules_(rules), long_documents_(long_documents) {}

  // Finds the postings of `record`. A record that no shrink purges `may_be_old`: a posting may be
  // that of an earlier document with the same code, one of more than 65535 words.
  //   Returns  whether the record is nothing but whole postings.
  bool Read(const DBDatum& record, bool may_be_old = false);

  // Returns the same, but does not look for more postings where the record is damaged.
  bool ReadsWhole(const DBDatum& record, bool may_be_old = false);

  // Returns what was found, in the order of the record.
  const Vector<WholePosting>& postings() const { return postings_; }

  // Leaves out those that `is_unwanted`.
  template <typename IsUnwanted>
  void Drop(IsUnwanted is_unwanted) {
    auto kept = postings_.begin();
    for (const WholePosting& posting : postings_) {
      if (!is_unwanted(posting)) *kept++ = posting;
    }
    postings_.erase(kept, postings_.end());
  }

 private:
  bool IsValid(const DBDatum& record, const Posting& posting, bool may_be_old) const;
  void ReadAround(const DBDatum& record, std::size_t from);
  bool IsPossible(Code code) const { return code != 0 && code <= rules_.highest; }
  std::size_t UnitsAt(const DBDatum& record, std::size_t unit) const;
  std::uint32_t ScoreOf(const DBDatum& record, std::size_t unit, std::size_t taken) const;
  static bool IsAscending(const DBDatum& record, std::size_t first, std::size_t count, bool wraps);

  const PostingRules& rules_;
  const CodeSet& long_documents_;
  Vector<WholePosting> postings_;
  UnfilledVector<std::uint16_t> ascending_;  // for each unit: how many from it on ascend
  UnfilledVector<std::uint32_t> score_;      // for each unit: of the best reading from it on
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_SALVAGE_POSTING_SALVAGE_H_
