// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/documents/contents.h>

#include <kestan/format/document_record.h>
#include <kestan/format/keys.h>
#include <kestan/format/option_flags.h>
#include <kestan/storage/datum_bytes.h>
#include <kestan/storage/walk/flush_policy.h>
#include <kestan/storage/walk/record_iterator.h>
#include <kestan/text/fold.h>

#include <algorithm>

namespace kestan {
namespace {

bool HasBytes(const DBDatumPtr& value, std::string_view bytes) {
  return value.ptr != nullptr && std::string_view(value.ptr->data, value.ptr->size) == bytes;
}

}  // namespace

int ReadRecord(Database& store, std::string_view key, DBDatumPtr* value) {
  const int error = store.Get(value, AsDatum(key));
  return Database::IsReadFailure(error) ? error : 0;
}

int Contents::Gather(Database& store) {
  DBDatumPtr options;
  if (const int error = ReadRecord(store, kOptionsKey, &options); error != 0) return error;
  if (options.ptr != nullptr) {
    has_positions_ = KeepsPositions(DecodeOptions(*options.ptr));
  }
  Vector<String> document_keys;
  if (const int error = SortKeys(store, &document_keys); error != 0) return error;
  if (const int error = ReadDocumentRecords(store, document_keys); error != 0) return error;
  DropKeysOfEmptyName();
  FindFoldedWords();
  return 0;
}

// Two-byte keys are those of words, and of the empty name.
int Contents::SortKeys(Database& store, Vector<String>* document_keys) {
  RecordIterator record(store, WalkOptions::Keys());
  for (; record.Valid(); record.Next()) {
    const std::string_view key = BytesOf(record.key());
    if (IsOfFamily(key, kDocumentFamily)) document_keys->emplace_back(key);
    if (key.size() <= kFamilyBytes || !IsOfKnownFamily(key)) words_.emplace_back(key);
  }
  std::sort(words_.begin(), words_.end());
  words_.erase(std::unique(words_.begin(), words_.end()), words_.end());
  return record.walk_error();
}

int Contents::ReadDocumentRecords(Database& store, const Vector<String>& keys) {
  PeriodicFlush flush(store);
  for (const String& key : keys) {
    if (const int error = ReadDocumentRecord(store, key); error != 0) return error;
    flush.Note(key.size());
  }
  std::sort(documents_.begin(), documents_.end(),
            [](const Document& left, const Document& right) { return left.code < right.code; });
  return 0;
}

// Only what the name record of its code names is a document: a word may have such a key too. So
// no two documents share a code.
int Contents::ReadDocumentRecord(Database& store, const String& key) {
  DBDatumPtr record;
  if (const int error = ReadRecord(store, key, &record); error != 0) return error;
  if (record.ptr == nullptr) return 0;
  const Code code = DocumentCode(*record.ptr);
  const auto name_key = NameKey(code);
  DBDatumPtr name;
  if (const int error = ReadRecord(store, {name_key.data(), name_key.size()}, &name); error != 0) {
    return error;
  }
  const std::string_view own_name = std::string_view(key).substr(kDocumentFamily.size());
  if (!HasBytes(name, own_name)) return 0;
  documents_.push_back({code, DocumentTimestamp(*record.ptr), String(own_name)});
  return 0;
}

// Where a document has the empty name, "d-" and its like are its records.
void Contents::DropKeysOfEmptyName() {
  const auto is_empty = [](const Document& document) { return document.name.empty(); };
  if (std::none_of(documents_.begin(), documents_.end(), is_empty)) return;
  words_.erase(std::remove_if(words_.begin(), words_.end(), IsOfKnownFamily), words_.end());
}

void Contents::FindFoldedWords() {
  for (const String& word : words_) {
    folded_words_.push_back(IsFolded(std::string_view(word)) ? kNoWord : Find(Folded(word)));
  }
}

WordId Contents::Find(const String& word) const {
  const auto found = std::lower_bound(words_.begin(), words_.end(), word);
  const bool is_recorded = found != words_.end() && *found == word;
  return is_recorded ? static_cast<WordId>(found - words_.begin()) : kNoWord;
}

}  // namespace kestan
