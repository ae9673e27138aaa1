// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/check/posting_check.h>

#include <kestan/format/keys.h>
#include <kestan/format/posting_list.h>
#include <kestan/format/units.h>
#include <kestan/maintenance/check/code_check.h>
#include <kestan/maintenance/salvage/word_list_salvage.h>
#include <kestan/text/fold.h>

#include <algorithm>
#include <limits>

namespace kestan {
namespace {

constexpr std::size_t kCodes = std::size_t{kMaxCode} + 1;

}  // namespace

PositionWeights::PositionWeights() : sums_(kCodes) {
  for (std::size_t i = 1; i < sums_.size(); ++i) {
    sums_[i] = sums_[i - 1] + Of(static_cast<Position>(i));
  }
}

std::uint64_t PositionWeights::Of(Position position) {
  std::uint64_t bits = (position + std::uint64_t{1}) * 0x9e3779b97f4a7c15U;
  bits = (bits ^ bits >> 30) * 0xbf58476d1ce4e5b9U;
  return bits ^ bits >> 29;
}

std::uint64_t PositionWeights::OfText(std::uint64_t words) const {
  const std::uint64_t rounds = words / kMaxPosition;
  return rounds * sums_[kMaxPosition] + sums_[static_cast<std::size_t>(words % kMaxPosition)];
}

PostingCheck::PostingCheck(const IndexTables& tables, CodeReuse reuse, Findings* findings)
    : tables_(tables),
      reuse_(reuse),
      findings_(*findings),
      known_(CodesInUse(tables)),
      statistics_(kCodes),
      seen_in_(kCodes) {
  for (const Code code : tables.removed) known_.set(code);
  for (const Code code : tables.reusable) reusable_.set(code);
}

void PostingCheck::Visit(const DBDatum& key, const DBDatum& value) {
  switch (tables_.KindOfRecord(key, value)) {
    case RecordKind::kPosting:
      return CheckPostings(key, value);
    case RecordKind::kWordList:
      return CheckWordList(key, value);
    case RecordKind::kTitle:
    case RecordKind::kSummary:
    case RecordKind::kUser:
    case RecordKind::kOther:
      return CheckText(key, value);
    default:
      return;
  }
}

void PostingCheck::CheckPostings(const DBDatum& key, const DBDatum& value) {
  const std::string_view word = BytesOf(key);
  if (IsSystemKey(word) && !NoteHyphen(key, value)) return;
  if (!CanBeWord(word)) findings_.Note(word, "no word: it is empty or holds white space or a NUL");
  if (value.size == 0) ++unused_words_;
  if (HasOddByte(value)) {
    findings_.Fault(word, "odd length: ", std::uint64_t{value.size}, " bytes");
  }
  const bool may_be_old = reuse_ == CodeReuse::kPossible && IsNeverPurged(key);
  const Faults faults = CountFaults({key, value, may_be_old, IsFolded(word), false});
  const auto report = [&](std::uint64_t count, const char* what) {
    if (count != 0) findings_.Fault(word, what, ": ", count);
  };
  report(faults.zero_codes, "entries of code 0");
  report(faults.unknown_codes, "entries of codes that no document holds");
  report(faults.free_codes, "entries of free codes, of documents that were removed");
  report(faults.repeated_codes, "entries of a code listed before");
  report(faults.without_positions, "entries without positions");
  report(faults.zero_positions, "positions of 0");
}

// Notes a word such as "e-mail". Positions that option flag 1 has left in its record make no sense
// to anybody.
//   Returns  whether there is something to be judged.
bool PostingCheck::NoteHyphen(const DBDatum& key, const DBDatum& value) {
  const std::string_view word = BytesOf(key);
  if (value.size == 0) {
    findings_.Note(word, "empty: that of a word with a hyphen, or of a lost document");
    return false;
  }
  if (!tables_.rules.with_positions && !LooksLikePostings(value, tables_.rules)) {
    findings_.Note(word, "a word with a hyphen, with positions that option flag 1 left");
    CountFaults({key, value, true, IsFolded(word), true});
    return false;
  }
  findings_.Note(word, "the posting record of a word with a hyphen");
  return true;
}

PostingCheck::Faults PostingCheck::CountFaults(const Record& record) {
  Faults faults;
  ++record_number_;
  PostingReader reader(record.value, tables_.rules.with_positions);
  Posting posting{};
  while (reader.Next(&posting)) {
    if (posting.code == 0) ++faults.zero_codes;
    CheckCode(record, posting.code, &faults);
    CountPositions(record, posting, &faults);
  }
  if (tables_.rules.with_positions) CheckEnd(record, posting);
  return faults;
}

// In records that no shrink purges, postings of removed documents stay when their codes become
// free. They would pass for postings of the next documents that get the codes.
void PostingCheck::CheckCode(const Record& record, Code code, Faults* faults) {
  const bool is_repeated = seen_in_[code] == record_number_;
  seen_in_[code] = record_number_;
  if (code == 0) return;
  if (is_repeated) ++faults->repeated_codes;
  if (known_[code] || tables_.IsIncomplete()) return;
  ++(record.may_be_old && reusable_[code] ? faults->free_codes : faults->unknown_codes);
}

void PostingCheck::CountPositions(const Record& record, const Posting& posting, Faults* faults) {
  DocumentStatistics& statistics = statistics_[posting.code];
  statistics.has_words = true;
  if (!record.may_be_old) statistics.has_own_words = true;
  if (!tables_.rules.with_positions) return;
  if (posting.positions == kMaxPosition || record.may_be_text) statistics.is_unsure = true;
  if (posting.units >= kUnitsBeforePositions && StatedPositions(record.value, posting) == 0) {
    ++faults->without_positions;
  }
  Position previous = 0;
  for (const Position position : PositionsOf(record.value, posting)) {
    if (position == kMaxPosition) statistics.wraps = true;
    if (record.is_folded) statistics.weight += PositionWeights::Of(position);
    if (position == 0) {
      ++faults->zero_positions;
    } else if (record.may_be_old) {
      statistics.doubtful += record.is_folded ? 1 : 0;
    } else {
      if (position <= previous) statistics.descends = true;
      statistics.highest = std::max(statistics.highest, position);
      statistics.positions += record.is_folded ? 1 : 0;
    }
    previous = position;
  }
}

// Reports a count that runs past the end, and a code at the end without a count.
void PostingCheck::CheckEnd(const Record& record, const Posting& last) {
  const std::string_view word = BytesOf(record.key);
  const std::uint64_t code = last.code;
  const std::uint64_t positions = last.positions;
  if (last.units == 1) {
    findings_.Fault(word, "ends within an entry: code ", code, " without a number of positions");
    return;
  }
  if (last.units == 0) return;
  const std::uint64_t count = StatedPositions(record.value, last);
  if (count == positions) return;
  findings_.Fault(word, "ends within an entry: code ", code, " counts ", count,
                  " positions and has ", positions);
}

// A title, a summary, a user record, or what has a key like theirs. Codes alone may look like a
// text of few bytes; then nobody can say that a document has no words.
void PostingCheck::CheckText(const DBDatum& key, const DBDatum& value) {
  const std::string_view bytes = BytesOf(key);
  if (CanBeWord(bytes) && LooksLikePostings(value, tables_.rules)) {
    CountFaults({key, value, true, IsFolded(bytes), true});
  }
  if (tables_.KindOfRecord(key, value) == RecordKind::kOther) {
    findings_.Note(bytes, "no record of the engine has such a key");
  } else if (!tables_.IsIncomplete() &&
             tables_.FindDocument(bytes.substr(kFamilyBytes)) == nullptr) {
    findings_.Note(bytes, "its document is not in the index");
  }
}

void PostingCheck::CheckWordList(const DBDatum& key, const DBDatum& value) {
  const std::string_view name = BytesOf(key);
  const WordListFaults faults = ReadWordList(BytesOf(value), nullptr);
  if (faults.lacks_first_word) findings_.Fault(name, "the list does not begin with a word");
  if (faults.shared_too_much != 0) {
    findings_.Fault(
        name, "words that share more bytes than the word before has: ", faults.shared_too_much);
  }
  if (faults.has_high_bytes) {
    findings_.Note(name, "bytes above 127 in words, which do not come back as they went in");
  }
}

void PostingCheck::NoteUnusedWords() {
  if (unused_words_ == 0) return;
  findings_.Note(kWholeFile,
                 "empty posting records, of words that no document holds: ", unused_words_);
}

void PostingCheck::CheckDocuments() {
  for (const IndexTables::Document& document : tables_.documents) {
    if (document.code != 0) CheckDocument(document);
  }
  for (const Code code : tables_.removed) CheckRemoved(code);
}

void PostingCheck::CheckDocument(const IndexTables::Document& document) {
  const DocumentStatistics& statistics = statistics_[document.code];
  const String key = ItemKey(kDocumentFamily, document.name);
  // Postings of one-byte words may be those of an earlier document that had the same code.
  const bool is_bare = !statistics.has_own_words && reusable_[document.code];
  if (!statistics.has_words || is_bare) {
    return findings_.Note(key, "no words: an empty text, or left half-written?");
  }
  if (statistics.descends && !statistics.wraps)
    findings_.Fault(key, "positions of a word do not ascend");
  CheckPlaces(key, statistics);
}

// A removed document keeps its words until a shrink.
void PostingCheck::CheckRemoved(Code code) {
  const DocumentStatistics& statistics = statistics_[code];
  const std::uint64_t recorded = std::uint64_t{statistics.positions} + statistics.doubtful;
  const bool has_all =
      recorded >= statistics.highest && statistics.weight == weights_.OfText(recorded);
  if (has_all || statistics.is_unsure || statistics.doubtful != 0) return;
  findings_.Fault(kDeletedKey, "words missing of the removed document of code ",
                  std::uint64_t{code}, "; a shrink takes the others");
}

// The folded words of a text have its positions, each of them once, and once more in every round of
// a text of more than 65535 words.
void PostingCheck::CheckPlaces(const String& key, const DocumentStatistics& statistics) {
  const std::uint64_t highest = statistics.highest;
  const std::uint64_t recorded = std::uint64_t{statistics.positions} + statistics.doubtful;
  if (statistics.positions > highest && !statistics.wraps) {
    findings_.Fault(key, "several words at one position: ", std::uint64_t{statistics.positions},
                    " up to position ", highest);
  } else if (recorded < highest) {
    findings_.Report(FindingKind::kCheckWordsMissing, key, "words missing: at least ",
                     highest - recorded, " of ", highest, "; left half-written?");
  } else if (statistics.is_unsure || statistics.weight == weights_.OfText(recorded)) {
    return;
  } else if (statistics.doubtful != 0) {
    findings_.Fault(key,
                    "words of one letter, or with a hyphen, contradict the others: those of "
                    "an earlier document?");
  } else {
    // Of a text that begins again at the first position, several words may share one.
    const FindingKind kind =
        statistics.wraps ? FindingKind::kCheckWordsMissing : FindingKind::kCheckFault;
    findings_.Report(kind, key, "some positions have several words, and others have none");
  }
}

}  // namespace kestan
