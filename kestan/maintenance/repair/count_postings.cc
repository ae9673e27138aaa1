// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/repair/count_postings.h>

#include <kestan/format/keys.h>
#include <kestan/format/posting_list.h>
#include <kestan/format/units.h>
#include <kestan/text/fold.h>

#include <algorithm>

namespace kestan {
namespace {

// Calls `visit(record)` for each record with the action kPostings.
template <typename Visit>
void ForEachPostingRecord(const Salvage& salvage, const RepairActions& actions, Visit visit) {
  for (std::size_t i = 0; i < actions.size(); ++i) {
    if (actions[i] == RepairAction::kPostings) visit(salvage.records()[i]);
  }
}

class PostingCounter {
 public:
  PostingCounter(const PostingRules& rules, KeptPostings* kept) : rules_(rules), kept_(*kept) {}

  PostingCounts Run(const Salvage& salvage, const RepairActions& actions) {
    for (std::size_t i = 0; i < actions.size(); ++i) {
      const SalvagedRecord& record = salvage.records()[i];
      const DBDatum key = AsDatum(salvage.KeyOf(record));
      const DBDatum value = AsDatum(salvage.ValueOf(record));
      if (actions[i] == RepairAction::kPostings) CountRecord(key, value);
      if (actions[i] == RepairAction::kCopy) CountCopied(key, value);
    }
    return std::move(counts_);
  }

 private:
  void CountRecord(const DBDatum& key, const DBDatum& value) {
    const bool is_folded = IsFolded(BytesOf(key));
    const bool is_doubtful = IsNeverPurged(key);
    const KeptRecord record = kept_.Read(key, value);
    if (!record.is_all) counts_.is_any_left_out = true;
    for (const WholePosting& posting : record.postings) {
      if (is_doubtful) {
        CountDoubtful(posting.code, posting.positions, is_folded);
      } else {
        CountOwn(value, posting, is_folded);
      }
    }
  }

  void CountOwn(const DBDatum& value, const WholePosting& posting, bool is_folded) {
    DocumentStatistics& document = counts_.documents[posting.code];
    document.has_words = true;
    document.has_own_words = true;
    counts_.posted.set(posting.code);
    if (is_folded) document.positions += posting.positions;
    for (const Position position : PositionsOf(value, posting)) {
      document.highest = std::max(document.highest, position);
    }
  }

  void CountDoubtful(Code code, std::uint16_t positions, bool is_folded) {
    DocumentStatistics& document = counts_.documents[code];
    document.has_words = true;
    if (is_folded) document.doubtful_positions += positions;
  }

  // A record that may be a word's or a host's own: a document that may have words is not called
  // one without words.
  void CountCopied(const DBDatum& key, const DBDatum& value) {
    if (LooksLikePostings(value, rules_)) return CountLikePostings(key, value);
    if (IsSystemKey(BytesOf(key))) CountMixed(value);
  }

  void CountLikePostings(const DBDatum& key, const DBDatum& value) {
    const bool is_folded = IsFolded(BytesOf(key));
    PostingReader reader(value, rules_.with_positions);
    Posting posting;
    while (reader.Next(&posting)) CountDoubtful(posting.code, posting.positions, is_folded);
  }

  // Nobody knows which units are codes.
  void CountMixed(const DBDatum& value) {
    if (rules_.with_positions || !LooksLikeMixedPostings(value)) return;
    for (std::size_t i = 0; i < CountCodes(value); ++i) {
      counts_.documents[CodeAt(value, i)].has_words = true;
    }
  }

  const PostingRules& rules_;
  KeptPostings& kept_;
  PostingCounts counts_;
};

}  // namespace

CodeSet FindLongDocuments(const Salvage& salvage, const RepairActions& actions,
                          bool with_positions) {
  CodeSet found;
  if (!with_positions) return found;
  ForEachPostingRecord(salvage, actions, [&](const SalvagedRecord& record) {
    const DBDatum value = AsDatum(salvage.ValueOf(record));
    if (!LooksLikePostings(value, {true, kMaxCode})) return;
    PostingReader reader(value, true);
    Posting posting;
    while (reader.Next(&posting)) {
      for (const Position position : PositionsOf(value, posting)) {
        if (position == kMaxPosition) found.set(posting.code);
      }
    }
  });
  return found;
}

Code HighestCodePosted(const Salvage& salvage, const RepairActions& actions, bool with_positions,
                       const CodeSet& long_documents) {
  const PostingRules rules{with_positions, kMaxCode};
  PostingSalvage postings(rules, long_documents);
  Code highest = 0;
  ForEachPostingRecord(salvage, actions, [&](const SalvagedRecord& record) {
    const bool is_never_purged = IsNeverPurged(AsDatum(salvage.KeyOf(record)));
    if (!postings.ReadsWhole(AsDatum(salvage.ValueOf(record)), is_never_purged)) return;
    for (const WholePosting& posting : postings.postings()) {
      highest = std::max(highest, posting.code);
    }
  });
  return highest;
}

PostingCounts CountKeptPostings(const Salvage& salvage, const RepairActions& actions,
                                const PostingRules& rules, KeptPostings* kept) {
  return PostingCounter(rules, kept).Run(salvage, actions);
}

}  // namespace kestan
