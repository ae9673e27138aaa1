#include <kestan/format/keys.h>
#include <kestan/format/posting.h>
#include <kestan/format/posting_list.h>
#include <kestan/format/units.h>
#include <kestan/maintenance/check/form_check.h>

#include <algorithm>

namespace kestan {
namespace {

constexpr unsigned char kFoldBit = 0x20;

String Fold(std::string_view word) {
  String folded(word);
  for (char& byte : folded) byte = static_cast<char>(byte | kFoldBit);
  return folded;
}

// One entry and the record that it is part of.
struct Placed {
  const DBDatum& record;
  const Posting& entry;

  std::size_t begin() const { return entry.first_unit + entry.units - entry.positions; }
  std::size_t end() const { return entry.first_unit + entry.units; }
};

// Positions that begin again behind the last are in the same order in both.
bool HasPositionsOf(const Placed& folded, const Placed& word) {
  std::size_t next = folded.begin();
  for (std::size_t i = word.begin(); i < word.end(); ++i) {
    while (next < folded.end() && UnitAt(folded.record, next) != UnitAt(word.record, i)) ++next;
    if (next++ >= folded.end()) return false;
  }
  return true;
}

// Returns the code of the first entry of `word` that `folded` lacks or has with other positions, 0
// if there is none. Damage is reported where it is met first: behind it, the two are out of step.
Code FirstLacking(const DBDatum& folded, const DBDatum& word, bool with_positions) {
  PostingReader folded_reader(folded, with_positions);
  PostingReader reader(word, with_positions);
  Posting other{};
  for (Posting entry{}; reader.Next(&entry);) {
    bool is_there = folded_reader.Next(&other);
    while (is_there && other.code != entry.code) is_there = folded_reader.Next(&other);
    if (!is_there || !HasPositionsOf({folded, other}, {word, entry})) return entry.code;
  }
  return 0;
}

}  // namespace

bool IsFolded(std::string_view word) {
  return std::all_of(word.begin(), word.end(),
                     [](char byte) { return (static_cast<unsigned char>(byte) & kFoldBit) != 0; });
}

void FormCheck::Visit(const DBDatum& key, const DBDatum& value) {
  const std::string_view word = BytesOf(key);
  if (value.size == 0 || IsNeverPurged(key) || IsFolded(word) || !CanBeWord(word)) return;
  const String folded_word = Fold(word);
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
  cadence_.Note(held_bytes);
}

}  // namespace kestan
