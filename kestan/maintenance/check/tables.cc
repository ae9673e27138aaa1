// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/check/tables.h>

#include <kestan/format/document_record.h>
#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>
#include <kestan/format/option_flags.h>
#include <kestan/storage/walk/record_iterator.h>

#include <algorithm>

namespace kestan {
namespace {

// A word, or a document whose record is damaged.
bool IsUndecided(const DBDatum& key, const DBDatum& value, RecordKind kind) {
  if (!IsSystemKey(BytesOf(key)) || !IsOfFamily(BytesOf(key), kDocumentFamily)) return false;
  return kind == RecordKind::kPosting || (value.size == 0 && CanBeWord(BytesOf(key)));
}

class TableBuilder {
 public:
  explicit TableBuilder(IndexTables* tables) : tables_(*tables) {}

  void Visit(const DBDatum& key, const DBDatum* value) {
    if (value == nullptr) {
      tables_.unreadable.emplace_back(BytesOf(key));
    } else {
      const RecordKind kind = KindOf(key, value, tables_.rules);
      if (IsUndecided(key, *value, kind)) return undecided_.push_back(DocumentOf(key, *value));
      Add(key, *value, kind);
    }
  }

  // A walk may visit a record more than once before it detects a cycle.
  void Finish() {
    Decide();
    auto& documents = tables_.documents;
    auto& names = tables_.names;
    std::sort(documents.begin(), documents.end(),
              [](const auto& left, const auto& right) { return left.name < right.name; });
    std::sort(names.begin(), names.end(),
              [](const auto& left, const auto& right) { return left.code < right.code; });
    documents.erase(
        std::unique(documents.begin(), documents.end(),
                    [](const auto& left, const auto& right) { return left.name == right.name; }),
        documents.end());
    names.erase(
        std::unique(names.begin(), names.end(),
                    [](const auto& left, const auto& right) { return left.code == right.code; }),
        names.end());
  }

 private:
  void Add(const DBDatum& key, const DBDatum& value, RecordKind kind) {
    switch (kind) {
      case RecordKind::kDocument:
        return AddDocument(DocumentOf(key, value));
      case RecordKind::kName:
        return AddName(key, value);
      case RecordKind::kCounter:
        return AddCounter(key, value);
      case RecordKind::kOptions:
        return AddOptions(key, value);
      case RecordKind::kReusableCodes:
        return AddCodes(key, value, &tables_.reusable);
      case RecordKind::kRemovedCodes:
        return AddCodes(key, value, &tables_.removed);
      case RecordKind::kPosting:
      case RecordKind::kTitle:
      case RecordKind::kSummary:
      case RecordKind::kUser:
      case RecordKind::kWordList:
      case RecordKind::kOther:
        return;
    }
  }

  // Adds those that a name record names.
  void Decide() {
    if (undecided_.empty()) return;
    Vector<std::string_view> names;
    for (const IndexTables::Name& name : tables_.names) names.push_back(name.name);
    std::sort(names.begin(), names.end());
    for (IndexTables::Document& document : undecided_) {
      if (std::binary_search(names.begin(), names.end(), std::string_view(document.name))) {
        AddDocument(std::move(document));
      }
    }
  }

  static IndexTables::Document DocumentOf(const DBDatum& key, const DBDatum& value) {
    IndexTables::Document document;
    document.name = BytesOf(key).substr(kDocumentFamily.size());
    document.bytes = value.size;
    document.code = DocumentCode(value);
    document.has_padding = value.size >= kDocumentRecordBytes && DocumentPadding(value) != 0;
    return document;
  }

  void AddDocument(IndexTables::Document document) {
    if (document.bytes != kDocumentRecordBytes) {
      tables_.odd.push_back({ItemKey(kDocumentFamily, document.name), document.bytes});
    }
    tables_.documents.push_back(std::move(document));
  }

  void AddName(const DBDatum& key, const DBDatum& value) {
    NoteOdd(key, value, key.size != kNameKeyBytes);
    if (key.size == kNameKeyBytes)
      tables_.names.push_back({CodeOfNameKey(key), String(BytesOf(value))});
  }

  void AddCounter(const DBDatum& key, const DBDatum& value) {
    NoteOdd(key, value, value.size != kUnitBytes);
    tables_.has_counter = true;
    tables_.counter = DecodeCounter(value);
  }

  void AddOptions(const DBDatum& key, const DBDatum& value) {
    NoteOdd(key, value, value.size != kOptionsBytes);
    tables_.has_options = true;
  }

  void AddCodes(const DBDatum& key, const DBDatum& value, Vector<Code>* codes) {
    NoteOdd(key, value, HasOddByte(value));
    codes->clear();
    for (std::size_t i = 0; i < CountCodes(value); ++i) codes->push_back(CodeAt(value, i));
  }

  void NoteOdd(const DBDatum& key, const DBDatum& value, bool is_odd) {
    if (is_odd) tables_.odd.push_back({String(BytesOf(key)), value.size});
  }

  IndexTables& tables_;
  Vector<IndexTables::Document> undecided_;
};

}  // namespace

const IndexTables::Document* IndexTables::FindDocument(std::string_view name) const {
  const auto found = std::lower_bound(
      documents.begin(), documents.end(), name,
      [](const Document& document, std::string_view wanted) { return document.name < wanted; });
  return found != documents.end() && found->name == name ? &*found : nullptr;
}

const IndexTables::Name* IndexTables::FindName(Code code) const {
  const auto found =
      std::lower_bound(names.begin(), names.end(), code,
                       [](const Name& name, Code wanted) { return name.code < wanted; });
  return found != names.end() && found->code == code ? &*found : nullptr;
}

RecordKind IndexTables::KindOfRecord(const DBDatum& key, const DBDatum& value) const {
  const RecordKind kind = KindOf(key, &value, rules);
  if (!IsUndecided(key, value, kind)) return kind;
  const bool is_document = FindDocument(BytesOf(key).substr(kDocumentFamily.size())) != nullptr;
  return is_document ? RecordKind::kDocument : RecordKind::kPosting;
}

IndexTables ReadTables(Database& store) {
  IndexTables tables;
  store.Flush();
  tables.rules = ReadPostingRules(store);
  TableBuilder builder(&tables);
  RecordIterator record(store, WalkOptions::BoundedMemory());
  for (; record.Valid(); record.Next()) builder.Visit(record.key(), record.value().ptr);
  tables.walk_error = record.walk_error();
  builder.Finish();
  return tables;
}

}  // namespace kestan
