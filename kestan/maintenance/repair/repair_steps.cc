// What a repair does with each record.
#include <kestan/format/keys.h>
#include <kestan/maintenance/repair/repair_plan.h>

#include <algorithm>

namespace kestan {
namespace {

constexpr std::uint32_t kNameKeyBytes = 2 + kUnitBytes;

bool IsName(const DBDatum& key, const DBDatum& value) {
  return key.size == kNameKeyBytes && BytesOf(value).find('\0') == std::string_view::npos;
}

// Tells whether a word with a hyphen has positions that option flag 1 left, which nobody can judge.
bool IsMixed(const DBDatum& key, const DBDatum& value, const PostingRules& rules) {
  return HasSystemKey(BytesOf(key)) && !rules.with_positions && !LooksLikePostings(value, rules);
}

}  // namespace

// What a record is must not depend on what the others turn out to say. Of records "d-" + name that
// may be those of words, the name records decide.
void RepairPlan::DecideSteps() {
  const Code highest = found_counter_ ? DecodeCounter(*found_counter_) : kMaxCode;
  const PostingRules rules{rules_.with_positions, highest};
  Vector<std::size_t> undecided;
  steps_.reserve(salvage_.records().size());
  for (const SalvagedRecord& record : salvage_.records()) {
    const std::string_view key = salvage_.KeyOf(record);
    const RepairStep step = DecideStep(record, rules);
    const bool may_be_word = step == RepairStep::kPostings || step == RepairStep::kCopy ||
                             (record.value_bytes == 0 && CanBeWord(key));
    if (may_be_word && HasSystemKey(key) && IsOfFamily(key, kDocumentFamily)) {
      undecided.push_back(steps_.size());
    }
    steps_.push_back(step);
  }
  DecideDocuments(undecided);
}

RepairStep RepairPlan::DecideStep(const SalvagedRecord& record, const PostingRules& rules) const {
  const DBDatum key = KeyOf(record);
  const DBDatum value = ValueOf(record);
  switch (KindOf(key, &value, rules)) {
    case RecordKind::kPosting:
      return IsMixed(key, value, rules) ? RepairStep::kCopy : RepairStep::kPostings;
    case RecordKind::kName:
      return IsName(key, value) ? RepairStep::kRewrite : RepairStep::kDrop;
    case RecordKind::kWordList:
      return RepairStep::kWordList;
    case RecordKind::kDocument:
    case RecordKind::kCounter:
    case RecordKind::kReusableCodes:
    case RecordKind::kRemovedCodes:
    case RecordKind::kOptions:
      return RepairStep::kRewrite;
    default:
      return RepairStep::kCopy;
  }
}

void RepairPlan::DecideDocuments(const Vector<std::size_t>& undecided) {
  if (undecided.empty()) return;
  Vector<std::string_view> names;
  for (const SalvagedRecord& record : salvage_.records()) {
    const bool is_name =
        StepOf(record) == RepairStep::kRewrite && IsOfFamily(salvage_.KeyOf(record), kNameFamily);
    if (is_name) names.push_back(salvage_.ValueOf(record));
  }
  std::sort(names.begin(), names.end());
  for (const std::size_t index : undecided) {
    const SalvagedRecord& record = salvage_.records()[index];
    const std::string_view name = salvage_.KeyOf(record).substr(kDocumentFamily.size());
    const bool is_named = std::binary_search(names.begin(), names.end(), name);
    if (is_named) steps_[index] = RepairStep::kRewrite;
    if (!is_named && record.value_bytes == 0) steps_[index] = RepairStep::kPostings;
  }
}

// Whether a record of no family is a damaged posting record goes by the counter, which is known
// only now.
void RepairPlan::FindDamagedWords() {
  const PostingRules rules{rules_.with_positions, counter_};
  for (std::size_t i = 0; i < steps_.size(); ++i) {
    if (steps_[i] == RepairStep::kCopy) steps_[i] = DecideStep(salvage_.records()[i], rules);
  }
}

// Of words whose keys the records of documents need.
void RepairPlan::DropWordsInTheWay() {
  for (std::size_t i = 0; i < steps_.size(); ++i) {
    const std::string_view key = salvage_.KeyOf(salvage_.records()[i]);
    if (steps_[i] != RepairStep::kRewrite && IsKeyOfDocument(key)) steps_[i] = RepairStep::kDrop;
  }
}

bool RepairPlan::IsKeyOfDocument(std::string_view key) const {
  if (IsOfFamily(key, kNameFamily)) {
    return key.size() == kNameKeyBytes && in_use_[UnitAt(AsDatum(key), 1)];
  }
  if (!IsOfFamily(key, kDocumentFamily)) return false;
  const std::string_view name = key.substr(kDocumentFamily.size());
  const auto& documents = documents_.documents;
  const auto found =
      std::lower_bound(documents.begin(), documents.end(), name,
                       [](const RepairedDocument& document, std::string_view wanted) {
                         return document.name < wanted;
                       });
  return found != documents.end() && found->name == name;
}

}  // namespace kestan
