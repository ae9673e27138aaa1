// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/repair/resolve_overlaps.h>

#include <kestan/format/keys.h>
#include <kestan/format/posting_list.h>
#include <kestan/format/units.h>
#include <kestan/text/fold.h>

#include <algorithm>
#include <tuple>

namespace kestan {
namespace {

// A position of a document: its code and the position in one number.
using Place = std::uint32_t;

Place PlaceOf(Code code, Position position) { return Place{code} << 16 | position; }

CodeSet FindCrowdedDocuments(const CodeSet& long_documents, const PostingCounts& counts) {
  CodeSet crowded;
  for (std::size_t code = 1; code < counts.documents.size(); ++code) {
    const DocumentStatistics& document = counts.documents[code];
    if (!long_documents[code] && document.positions > document.highest) crowded.set(code);
  }
  return crowded;
}

class OverlapResolver {
 public:
  OverlapResolver(const Salvage& salvage, const CodeSet& crowded, KeptPostings* kept)
      : salvage_(salvage), crowded_(crowded), kept_(*kept) {}

  Vector<OverlappingPosting> Run(const RepairActions& actions) {
    for (std::size_t i = 0; i < actions.size(); ++i) {
      if (actions[i] == RepairAction::kPostings) Collect(i);
    }
    std::sort(places_.begin(), places_.end());
    is_taken_.assign(places_.size(), 0);
    Vector<OverlappingPosting> left_out;
    for (const Contender& contender : contenders_) {
      if (!TakesPlaces(contender)) left_out.push_back(contender.posting);
    }
    return left_out;
  }

 private:
  // A posting of a crowded document.
  struct Contender {
    OverlappingPosting posting;
    bool is_doubted;  // parts of its record are damaged, or all of it may be old
  };

  void Collect(std::size_t index) {
    const SalvagedRecord& record = salvage_.records()[index];
    const DBDatum key = AsDatum(salvage_.KeyOf(record));
    if (IsNeverPurged(key) || !IsFolded(BytesOf(key))) return;
    const KeptRecord kept = kept_.Read(key, AsDatum(salvage_.ValueOf(record)));
    for (const WholePosting& posting : kept.postings) {
      if (!crowded_[posting.code]) continue;
      contenders_.push_back({{index, posting.first_unit, posting.code, posting.positions},
                             !kept.is_valid || !record.is_current});
      ForEachPlace(contenders_.back().posting, [&](Place place) { places_.push_back(place); });
    }
  }

  // Positions are kept, or there would be no crowded document.
  template <typename Visit>
  void ForEachPlace(const OverlappingPosting& posting, Visit visit) const {
    const DBDatum value = AsDatum(salvage_.ValueOf(salvage_.records()[posting.record]));
    const std::size_t first = posting.first_unit + kUnitsBeforePositions;
    for (std::size_t i = first; i < first + posting.positions; ++i) {
      visit(PlaceOf(posting.code, UnitAt(value, i)));
    }
  }

  //   Returns  false, with none of them taken, if another word has one of the places.
  bool TakesPlaces(const Contender& contender) {
    Vector<std::size_t> taken;
    bool is_free = true;
    ForEachPlace(contender.posting, [&](Place place) {
      const auto same = std::equal_range(places_.begin(), places_.end(), place);
      const auto index = static_cast<std::size_t>(same.first - places_.begin());
      const bool is_disputed = same.second - same.first > 1;
      if (is_taken_[index] != 0 || (contender.is_doubted && is_disputed)) is_free = false;
      taken.push_back(index);
    });
    if (!is_free) return false;
    for (const std::size_t index : taken) is_taken_[index] = 1;
    return true;
  }

  const Salvage& salvage_;
  const CodeSet& crowded_;
  KeptPostings& kept_;
  Vector<Contender> contenders_;
  Vector<Place> places_;   // of all contenders, sorted, once for each word
  Vector<char> is_taken_;  // of each place: at the first of equal ones
};

}  // namespace

bool Overlaps::Has(std::size_t record, std::uint32_t first_unit) const {
  const auto found =
      std::lower_bound(postings.begin(), postings.end(), std::make_tuple(record, first_unit),
                       [](const OverlappingPosting& posting, const auto& wanted) {
                         return std::make_tuple(posting.record, posting.first_unit) < wanted;
                       });
  return found != postings.end() && found->record == record && found->first_unit == first_unit;
}

Overlaps ResolveOverlaps(const Salvage& salvage, const RepairActions& actions,
                         const CodeSet& long_documents, const PostingCounts& counts,
                         KeptPostings* kept) {
  const CodeSet crowded = FindCrowdedDocuments(long_documents, counts);
  if (crowded.none()) return {};
  return {true, OverlapResolver(salvage, crowded, kept).Run(actions)};
}

void Subtract(const Overlaps& overlaps, PostingCounts* counts) {
  for (const OverlappingPosting& posting : overlaps.postings) {
    counts->documents[posting.code].positions -= posting.positions;
  }
}

}  // namespace kestan
