// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/repair/classify_records.h>

#include <kestan/format/document_record.h>
#include <kestan/format/keys.h>

#include <algorithm>

namespace kestan {
namespace {

bool IsName(const DBDatum& key, const DBDatum& value) {
  return key.size == kNameKeyBytes && BytesOf(value).find('\0') == std::string_view::npos;
}

// Returns whether a word with a hyphen has positions that option flag 1 left. Nobody can judge
// such a record.
bool IsMixed(const DBDatum& key, const DBDatum& value, const PostingRules& rules) {
  return IsSystemKey(BytesOf(key)) && !rules.with_positions && !LooksLikePostings(value, rules);
}

RepairAction Classify(const Salvage& salvage, const SalvagedRecord& record,
                      const PostingRules& rules) {
  const DBDatum key = AsDatum(salvage.KeyOf(record));
  const DBDatum value = AsDatum(salvage.ValueOf(record));
  switch (KindOf(key, &value, rules)) {
    case RecordKind::kPosting:
      return IsMixed(key, value, rules) ? RepairAction::kCopy : RepairAction::kPostings;
    case RecordKind::kName:
      return IsName(key, value) ? RepairAction::kRewrite : RepairAction::kDrop;
    case RecordKind::kWordList:
      return RepairAction::kWordList;
    case RecordKind::kDocument:
    case RecordKind::kCounter:
    case RecordKind::kReusableCodes:
    case RecordKind::kRemovedCodes:
    case RecordKind::kOptions:
      return RepairAction::kRewrite;
    default:
      return RepairAction::kCopy;
  }
}

// Returns whether the record may be that of a document or that of a word such as "d-day".
bool MayBeDocumentOrWord(std::string_view key, const SalvagedRecord& record, RepairAction action) {
  if (!IsSystemKey(key) || !IsOfFamily(key, kDocumentFamily)) return false;
  return action == RepairAction::kPostings || action == RepairAction::kCopy ||
         (record.value_bytes == 0 && CanBeWord(key));
}

Vector<std::string_view> SortedNames(const Salvage& salvage, const RepairActions& actions) {
  Vector<std::string_view> names;
  for (std::size_t i = 0; i < actions.size(); ++i) {
    const SalvagedRecord& record = salvage.records()[i];
    const bool is_name =
        actions[i] == RepairAction::kRewrite && IsOfFamily(salvage.KeyOf(record), kNameFamily);
    if (is_name) names.push_back(salvage.ValueOf(record));
  }
  std::sort(names.begin(), names.end());
  return names;
}

void ClassifyUndecided(const Salvage& salvage, const Vector<std::size_t>& undecided,
                       RepairActions* actions) {
  if (undecided.empty()) return;
  const Vector<std::string_view> names = SortedNames(salvage, *actions);
  for (const std::size_t i : undecided) {
    const SalvagedRecord& record = salvage.records()[i];
    const std::string_view name = salvage.KeyOf(record).substr(kDocumentFamily.size());
    const bool is_named = std::binary_search(names.begin(), names.end(), name);
    if (is_named) (*actions)[i] = RepairAction::kRewrite;
    if (!is_named && record.value_bytes == 0) (*actions)[i] = RepairAction::kPostings;
  }
}

DocumentCandidate CandidateOf(const Salvage& salvage, const SalvagedRecord& record) {
  const DBDatum value = AsDatum(salvage.ValueOf(record));
  const bool is_valid = value.size == kDocumentRecordBytes && DocumentPadding(value) == 0;
  const std::string_view name = salvage.KeyOf(record).substr(kDocumentFamily.size());
  return {name, DocumentTimestamp(value), is_valid ? DocumentCode(value) : Code{0},
          record.is_current};
}

// Returns the document `name`, null if there is none.
const RepairedDocument* FindDocument(const RepairedDocuments& documents, std::string_view name) {
  const auto found =
      std::lower_bound(documents.documents.begin(), documents.documents.end(), name,
                       [](const RepairedDocument& document, std::string_view wanted) {
                         return document.name < wanted;
                       });
  const bool is_found = found != documents.documents.end() && found->name == name;
  return is_found ? &*found : nullptr;
}

bool IsKeyOfDocument(std::string_view key, const RepairedDocuments& documents) {
  if (IsOfFamily(key, kNameFamily)) {
    return key.size() == kNameKeyBytes && documents.codes[CodeOfNameKey(AsDatum(key))];
  }
  return IsOfFamily(key, kDocumentFamily) &&
         FindDocument(documents, key.substr(kDocumentFamily.size())) != nullptr;
}

// Returns whether a record with the key of a name record holds the very name that the new index
// gets for its code. Names with a NUL, which no engine gives, are not known for names otherwise.
bool HoldsNameOfDocument(std::string_view key, std::string_view value,
                         const RepairedDocuments& documents) {
  if (!IsOfFamily(key, kNameFamily)) return false;
  const RepairedDocument* const document = FindDocument(documents, value);
  return document != nullptr && document->code == CodeOfNameKey(AsDatum(key));
}

}  // namespace

RepairActions ClassifyRecords(const Salvage& salvage, const PostingRules& rules) {
  RepairActions actions;
  Vector<std::size_t> undecided;
  actions.reserve(salvage.records().size());
  for (const SalvagedRecord& record : salvage.records()) {
    const RepairAction action = Classify(salvage, record, rules);
    if (MayBeDocumentOrWord(salvage.KeyOf(record), record, action)) {
      undecided.push_back(actions.size());
    }
    actions.push_back(action);
  }
  ClassifyUndecided(salvage, undecided, &actions);
  return actions;
}

DocumentCandidates CollectCandidates(const Salvage& salvage, const RepairActions& actions) {
  DocumentCandidates candidates;
  for (std::size_t i = 0; i < actions.size(); ++i) {
    if (actions[i] != RepairAction::kRewrite) continue;
    const SalvagedRecord& record = salvage.records()[i];
    const std::string_view key = salvage.KeyOf(record);
    if (IsOfFamily(key, kDocumentFamily)) {
      candidates.documents.push_back(CandidateOf(salvage, record));
    }
    if (!IsOfFamily(key, kNameFamily) || record.is_cut) continue;
    const Code code = CodeOfNameKey(AsDatum(key));
    candidates.names.push_back({salvage.ValueOf(record), code, record.is_current});
  }
  return candidates;
}

void DropWordsInTheWay(const Salvage& salvage, const RepairedDocuments& documents,
                       RepairActions* actions) {
  for (std::size_t i = 0; i < actions->size(); ++i) {
    RepairAction& action = (*actions)[i];
    if (action == RepairAction::kRewrite) continue;
    const SalvagedRecord& record = salvage.records()[i];
    const std::string_view key = salvage.KeyOf(record);
    if (!IsKeyOfDocument(key, documents)) continue;
    const bool is_restated = HoldsNameOfDocument(key, salvage.ValueOf(record), documents);
    action = is_restated ? RepairAction::kRewrite : RepairAction::kDrop;
  }
}

void FindDamagedWords(const Salvage& salvage, const PostingRules& rules, RepairActions* actions) {
  for (std::size_t i = 0; i < actions->size(); ++i) {
    RepairAction& action = (*actions)[i];
    if (action == RepairAction::kCopy) action = Classify(salvage, salvage.records()[i], rules);
  }
}

}  // namespace kestan
