// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/check/form_check.h>

#include <kestan/format/keys.h>
#include <kestan/format/posting.h>
#include <kestan/format/posting_list.h>
#include <kestan/format/units.h>
#include <kestan/text/fold.h>

namespace kestan {
namespace {

// Returns whether `folded` has all positions of `word`. Positions that begin again after the last
// one are in the same order in both.
bool HasPositionsOf(const EncodedPositions& folded, const EncodedPositions& word) {
  auto next = folded.begin();
  for (const Position position : word) {
    while (next != folded.end() && *next != position) ++next;
    if (next == folded.end()) return false;
    ++next;
  }
  return true;
}

// Returns the code of the first posting of `word` that `folded` lacks or has with other positions,
// 0 if there is none. Only the first is reported: after it, the two are out of step.
Code FirstLacking(const DBDatum& folded, const DBDatum& word, bool with_positions) {
  PostingReader folded_reader(folded, with_positions);
  PostingReader reader(word, with_positions);
  Posting other{};
  for (Posting posting{}; reader.Next(&posting);) {
    bool is_there = folded_reader.Next(&other);
    while (is_there && other.code != posting.code) is_there = folded_reader.Next(&other);
    if (!is_there || !HasPositionsOf(PositionsOf(folded, other), PositionsOf(word, posting))) {
      return posting.code;
    }
  }
  return 0;
}

}  // namespace

void FormCheck::Visit(const DBDatum& key, const DBDatum& value) {
  const std::string_view word = BytesOf(key);
  if (value.size == 0 || IsNeverPurged(key) || IsFolded(word) || !CanBeWord(word)) return;
  const String folded_word = Folded(word);
  DBDatumPtr folded;
  const int error = store_.Get(&folded, AsDatum(folded_word));
  if (Database::IsReadFailure(error)) return;
  if (folded.ptr == nullptr) {
    findings_.Fault(word, "the case-folded form has no record");
    return;
  }
  const Code code = FirstLacking(*folded.ptr, value, tables_.rules.with_positions);
  if (code != 0) {
    findings_.Fault(word,
                    "the case-folded form is not where this is, first in the document of code ",
                    std::uint64_t{code});
  }
  const std::size_t held_bytes = folded.ptr->size;
  folded.Free();
  flush_.Note(held_bytes);
}

}  // namespace kestan
