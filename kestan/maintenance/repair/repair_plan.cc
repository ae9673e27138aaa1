#include <kestan/format/document_record.h>
#include <kestan/format/keys.h>
#include <kestan/format/option_flags.h>
#include <kestan/maintenance/repair/repair_plan.h>

#include <algorithm>

namespace kestan {
namespace {

constexpr std::size_t kCodes = std::size_t{kMaxCode} + 1;
constexpr Position kMaxPosition = kMaxCode;

bool IsFolded(std::string_view word) {
  constexpr unsigned kFoldBit = 0x20;
  return std::all_of(word.begin(), word.end(),
                     [](char byte) { return (static_cast<unsigned char>(byte) & kFoldBit) != 0; });
}

std::uint32_t PlaceOf(Code code, Position position) { return std::uint32_t{code} << 16 | position; }

}  // namespace

RepairPlan::RepairPlan(const Salvage& salvage, RepairReport* report)
    : salvage_(salvage), report_(*report), seen_in_(kCodes) {
  is_damaged_ = salvage.damage().IsAny();
  FindSingleRecords();
  ChooseOptions();
  DecideSteps();
  FindWrapping();
  CollectClaims();
  FindHighestCode();
  TakeCodes(found_reusable_, &retired_);
  TakeCodes(found_removed_, &retired_);
  documents_ = RepairDocuments(std::move(document_claims_), name_claims_, retired_);
  end_code_ = std::size_t{rules_.highest} + 1;
  for (const RepairedDocument& document : documents_.documents) {
    in_use_.set(document.code);
    end_code_ = std::max(end_code_, std::size_t{document.code} + 1);
  }
  tallies_.resize(end_code_);
  DropWordsInTheWay();
  TallyPostings();
  FindContradictions();
  ListCodes();
  FindDamagedWords();
}

DBDatum RepairPlan::KeyOf(const SalvagedRecord& record) const {
  return AsDatum(salvage_.KeyOf(record));
}

DBDatum RepairPlan::ValueOf(const SalvagedRecord& record) const {
  return AsDatum(salvage_.ValueOf(record));
}

void RepairPlan::FindSingleRecords() {
  rules_.highest = kMaxCode;
  for (const SalvagedRecord& record : salvage_.records()) {
    const std::string_view key = salvage_.KeyOf(record);
    if (key == kCounterKey) found_counter_ = ValueOf(record);
    if (key == kAvailableKey) found_reusable_ = ValueOf(record);
    if (key == kDeletedKey) found_removed_ = ValueOf(record);
    if (key == kOptionsKey) found_options_ = ValueOf(record);
  }
  KeepFirstBytes(kCounterKey, kUnitBytes, &found_counter_);
  KeepFirstBytes(kOptionsKey, kOptionsBytes, &found_options_);
}

// A word with the key of the record has grown it at its end. What is too short is lost.
void RepairPlan::KeepFirstBytes(std::string_view key, std::uint32_t bytes, Record* record) {
  if (!*record || (*record)->size == bytes) return;
  if ((*record)->size < bytes) return record->reset();
  report_.Say({"note: ", key, ": ", std::uint64_t{(*record)->size}, " bytes, of which the first ",
               std::uint64_t{bytes}, " are kept"});
  *record = DBDatum((*record)->data, bytes);
}

// What flag 1 says is believed unless nearly every posting record says otherwise. Short ones can
// often be read both ways, and then say nothing against it.
void RepairPlan::ChooseOptions() {
  constexpr std::size_t kMany = 10;
  const Look look = LookAtPostings();
  const std::size_t nearly_all = look.records - look.records / 10;
  if (found_options_) options_ = DecodeOptions(*found_options_);
  bool keeps_positions = (options_ & kFlagNoPositions) == 0;
  const bool is_wrong = keeps_positions
                            ? look.codes_alone >= nearly_all && look.placed * 2 < look.records
                            : look.placed >= nearly_all && look.codes_alone < nearly_all;
  if (!found_options_) {
    keeps_positions = look.placed * 2 >= look.records;
    report_.Say(
        {"note: g-opts: lost, and flags of the host with it; going by the posting records, ",
         keeps_positions ? "positions are kept" : "no positions are kept"});
  } else if (is_wrong && look.records >= kMany) {
    keeps_positions = !keeps_positions;
    report_.Say({"note: g-opts: flag 1 was wrong, going by the posting records"});
  }
  options_ = keeps_positions ? options_ & ~kFlagNoPositions : options_ | kFlagNoPositions;
  rules_.with_positions = keeps_positions;
}

RepairPlan::Look RepairPlan::LookAtPostings() {
  Look look;
  rules_.with_positions = true;
  for (const SalvagedRecord& record : salvage_.records()) {
    const DBDatum value = ValueOf(record);
    if (value.size == 0 || (record.key_bytes > 1 && salvage_.KeyOf(record)[1] == '-')) continue;
    ++look.records;
    if (postings_.ReadsWhole(value)) ++look.placed;
    if (AreDistinctCodes(value)) ++look.codes_alone;
  }
  return look;
}

bool RepairPlan::AreDistinctCodes(const DBDatum& value) {
  ++record_number_;
  for (std::size_t i = 0; i < CountCodes(value); ++i) {
    const Code code = CodeAt(value, i);
    if (code == 0 || seen_in_[code] == record_number_) return false;
    seen_in_[code] = record_number_;
  }
  return value.size % kUnitBytes == 0;
}

// Only a document of more than 65535 words has one at the last position.
void RepairPlan::FindWrapping() {
  if (!rules_.with_positions) return;
  for (const SalvagedRecord& record : salvage_.records()) {
    if (StepOf(record) != RepairStep::kPostings) continue;
    const DBDatum value = ValueOf(record);
    if (!LooksLikePostings(value, rules_)) continue;
    PostingReader reader(value, true);
    Posting entry;
    while (reader.Next(&entry)) {
      for (std::size_t i = entry.units - entry.positions; i < entry.units; ++i) {
        if (UnitAt(value, entry.first_unit + i) == kMaxPosition) wrapping_.set(entry.code);
      }
    }
  }
}

void RepairPlan::CollectClaims() {
  for (const SalvagedRecord& record : salvage_.records()) {
    if (StepOf(record) != RepairStep::kRewrite) continue;
    const std::string_view key = salvage_.KeyOf(record);
    if (IsOfFamily(key, kDocumentFamily)) AddDocumentClaim(record);
    // Part of a name would be another document's.
    if (!IsOfFamily(key, kNameFamily) || record.is_cut) continue;
    name_claims_.push_back({salvage_.ValueOf(record), UnitAt(KeyOf(record), 1), record.is_current});
  }
}

void RepairPlan::AddDocumentClaim(const SalvagedRecord& record) {
  const DBDatum value = ValueOf(record);
  const bool is_sound = value.size == kDocumentRecordBytes && UnitAt(value, 3) == 0;
  const std::string_view name = salvage_.KeyOf(record).substr(kDocumentFamily.size());
  document_claims_.push_back({name, kestan::DocumentTimestamp(value),
                              is_sound ? DocumentCode(value) : Code{0}, record.is_current});
}

// No document can have a higher code. The counter may lag behind documents that were added after
// the last flush; where it is lost, everything that names a code says how far it went.
void RepairPlan::FindHighestCode() {
  Code highest = found_counter_ ? DecodeCounter(*found_counter_) : HighestCodeSeen();
  Vector<const NameClaim*> names(EndOfCodes(name_claims_));
  for (const NameClaim& name : name_claims_) names[name.code] = &name;
  for (const DocumentClaim& claim : document_claims_) {
    const NameClaim* const name = claim.code < names.size() ? names[claim.code] : nullptr;
    if (name != nullptr && name->name == claim.name) highest = std::max(highest, claim.code);
  }
  rules_.highest = highest;
}

// Of posting records, only sound ones count.
Code RepairPlan::HighestCodeSeen() {
  Code highest = 0;
  for (const DocumentClaim& claim : document_claims_) highest = std::max(highest, claim.code);
  for (const NameClaim& name : name_claims_) highest = std::max(highest, name.code);
  for (const Record& list : {found_reusable_, found_removed_}) {
    for (std::size_t i = 0; list && i < CountCodes(*list); ++i) {
      highest = std::max(highest, CodeAt(*list, i));
    }
  }
  for (const SalvagedRecord& record : salvage_.records()) {
    if (StepOf(record) != RepairStep::kPostings) continue;
    if (!postings_.ReadsWhole(ValueOf(record), IsNeverPurged(KeyOf(record)))) continue;
    for (const WholePosting& entry : postings_.entries()) highest = std::max(highest, entry.code);
  }
  return highest;
}

void RepairPlan::TakeCodes(const Record& list, CodeSet* codes) const {
  for (std::size_t i = 0; list && i < CountCodes(*list); ++i) {
    const Code code = CodeAt(*list, i);
    if (code != 0 && code <= rules_.highest) codes->set(code);
  }
}

bool RepairPlan::IsKept(Code code, bool is_never_purged) {
  if (is_never_purged) return in_use_[code] || retired_[code];
  const bool is_repeated = seen_in_[code] == record_number_;
  seen_in_[code] = record_number_;
  return !is_repeated;
}

// Two words at one place contradict each other. The one whose record is in doubt goes, or else the
// one that comes later.
bool RepairPlan::TakesPlaces(const DBDatum& value, const WholePosting& entry, bool is_doubted) {
  Vector<std::size_t> taken;
  for (std::size_t i = entry.units() - entry.positions; i < entry.units(); ++i) {
    const std::uint32_t place = PlaceOf(entry.code, UnitAt(value, entry.first_unit + i));
    const auto same = std::equal_range(places_.begin(), places_.end(), place);
    const auto index = static_cast<std::size_t>(same.first - places_.begin());
    if (taken_[index] != 0 || (is_doubted && same.second - same.first > 1)) return false;
    taken.push_back(index);
  }
  for (const std::size_t index : taken) taken_[index] = 1;
  return true;
}

const Vector<WholePosting>& RepairPlan::KeptPostings(const SalvagedRecord& record, bool* all) {
  const DBDatum value = ValueOf(record);
  *all = postings_.Read(value, IsNeverPurged(KeyOf(record)));
  const bool is_doubted = !*all || !record.is_current;
  const bool is_never_purged = IsNeverPurged(KeyOf(record));
  const bool has_places = !is_never_purged && IsFolded(salvage_.KeyOf(record));
  const std::size_t found = postings_.entries().size();
  ++record_number_;
  postings_.Drop([&](const WholePosting& entry) {
    if (!IsKept(entry.code, is_never_purged)) return true;
    if (!has_places || !contradictory_[entry.code]) return false;
    if (TakesPlaces(value, entry, is_doubted)) return false;
    tallies_[entry.code].positions -= entry.positions;
    return true;
  });
  if (postings_.entries().size() != found) *all = false;
  return postings_.entries();
}

void RepairPlan::TallyPostings() {
  for (const SalvagedRecord& record : salvage_.records()) {
    const RepairStep step = StepOf(record);
    const DBDatum value = ValueOf(record);
    if (step == RepairStep::kPostings) {
      bool all = false;
      const auto& entries = KeptPostings(record, &all);
      if (!all) is_damaged_ = true;
      TallyRecord(salvage_.KeyOf(record), value, entries, IsNeverPurged(KeyOf(record)));
    } else if (step == RepairStep::kCopy && LooksLikePostings(value, rules_) &&
               postings_.Read(value, true)) {
      TallyRecord(salvage_.KeyOf(record), value, postings_.entries(), true);
    } else if (step == RepairStep::kCopy && HasSystemKey(salvage_.KeyOf(record))) {
      TallyMixed(value);
    }
  }
}

// Which units are codes nobody knows. A document that may have words is not said to have none.
void RepairPlan::TallyMixed(const DBDatum& value) {
  if (rules_.with_positions || !LooksLikeMixedPostings(value)) return;
  for (std::size_t i = 0; i < CountCodes(value); ++i) {
    const Code code = CodeAt(value, i);
    if (code < end_code_) tallies_[code].has_words = true;
  }
}

void RepairPlan::TallyRecord(std::string_view key, const DBDatum& value,
                             const Vector<WholePosting>& entries, bool is_doubtful) {
  const bool is_folded = IsFolded(key);
  for (const WholePosting& entry : entries) {
    Tally& tally = tallies_[entry.code];
    tally.has_words = true;
    if (!is_doubtful) {
      posted_.set(entry.code);
      tally.has_own_words = true;
    }
    if (is_folded) (is_doubtful ? tally.doubtful : tally.positions) += entry.positions;
    for (std::size_t i = entry.units() - entry.positions; !is_doubtful && i < entry.units(); ++i) {
      tally.highest = std::max(tally.highest, UnitAt(value, entry.first_unit + i));
    }
  }
}

// An entry whose code is damaged gives another document more words than it has places.
void RepairPlan::FindContradictions() {
  CodeSet found;
  for (std::size_t code = 1; code < end_code_; ++code) {
    const Tally& tally = tallies_[code];
    if (!wrapping_.test(code) && tally.positions > tally.highest) found.set(code);
  }
  if (found.none()) return;
  is_damaged_ = true;
  CollectPlaces(found);
  contradictory_ = found;
}

void RepairPlan::CollectPlaces(const CodeSet& codes) {
  for (const SalvagedRecord& record : salvage_.records()) {
    const DBDatum key = KeyOf(record);
    if (StepOf(record) != RepairStep::kPostings || IsNeverPurged(key) || !IsFolded(BytesOf(key))) {
      continue;
    }
    const DBDatum value = ValueOf(record);
    bool all = false;
    for (const WholePosting& entry : KeptPostings(record, &all)) {
      if (!codes[entry.code]) continue;
      for (std::size_t i = entry.units() - entry.positions; i < entry.units(); ++i) {
        places_.push_back(PlaceOf(entry.code, UnitAt(value, entry.first_unit + i)));
      }
    }
  }
  std::sort(places_.begin(), places_.end());
  taken_.assign(places_.size(), 0);
}

// Every code up to the counter is in use, removed or reusable.
void RepairPlan::ListCodes() {
  CodeSet listed = in_use_;
  const auto add = [&](Code code, Vector<Code>* list) {
    if (listed[code]) return;
    listed.set(code);
    list->push_back(code);
  };
  for (std::size_t i = 0; found_removed_ && i < CountCodes(*found_removed_); ++i) {
    const Code code = CodeAt(*found_removed_, i);
    if (retired_[code]) add(code, &removed_);
  }
  for (std::size_t code = 1; code < end_code_; ++code) {
    if (posted_[code] && !listed[code]) orphans_.set(code);
    if (posted_[code]) add(static_cast<Code>(code), &removed_);
  }
  for (std::size_t i = 0; found_reusable_ && i < CountCodes(*found_reusable_); ++i) {
    const Code code = CodeAt(*found_reusable_, i);
    if (retired_[code]) add(code, &reusable_);
  }
  for (std::size_t code = 1; code < end_code_; ++code) {
    if (listed[code]) counter_ = static_cast<Code>(code);
  }
  for (Code code = 1; code < counter_; ++code) add(code, &reusable_);
  const std::uint64_t found = found_counter_ ? DecodeCounter(*found_counter_) : Code{0};
  if (found != counter_) {
    report_.Say({"note: g-code: ", std::uint64_t{counter_},
                 found_counter_ ? " instead of " : ", lost",
                 found_counter_ ? LinePart(found) : LinePart("")});
  }
}

}  // namespace kestan
