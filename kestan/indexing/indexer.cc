// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/indexing/indexer.h>

#include <kestan/format/document_record.h>
#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>
#include <kestan/format/posting.h>
#include <kestan/format/posting_list.h>
#include <kestan/indexing/tokenizer.h>
#include <kestan/storage/memory/diagnostics.h>
#include <kestan/storage/memory/memory.h>

#include <algorithm>
#include <ctime>

namespace kestan {
namespace {

std::uint32_t Now() { return static_cast<std::uint32_t>(std::time(nullptr)); }

bool IsUnreadable(Database& store, std::string_view key) {
  bool is_unreadable = false;
  Fetch(store, key, &is_unreadable);
  return is_unreadable;
}

void MarkDirty(const DBDatumPtr& value) { value.ptr->dirty = true; }

// Takes the code that became reusable last.
AddOutcome ReuseCode(const DBDatumPtr& reusable_codes, Code* code) {
  *code = TakeLastCode(reusable_codes.ptr);
  MarkDirty(reusable_codes);
  return *code != 0 ? AddOutcome::kAdded : AddOutcome::kCodeZero;
}

// Takes the code after the highest one that was handed out.
AddOutcome NextCode(Database& store, Code* code) {
  bool is_unreadable = false;
  const DBDatumPtr counter = Fetch(store, kCounterKey, &is_unreadable);
  if (is_unreadable) return AddOutcome::kUnreadable;
  if (counter.ptr == nullptr) {
    *code = 1;
    store.Put(AsDatum(kCounterKey), AsDatum(EncodeCode(*code)));
    return AddOutcome::kAdded;
  }
  const Code highest = DecodeCounter(*counter.ptr);
  if (highest == kMaxCode) {
    PrintDiagnostic("Too many documents (max=65535) -- try shrinking database\n");
    return AddOutcome::kFull;
  }
  *code = static_cast<Code>(highest + 1);
  SetCounter(counter.ptr, *code);
  MarkDirty(counter);
  return AddOutcome::kAdded;
}

// Adds the postings of one document to the records of its words.
class PostingAdder {
 public:
  PostingAdder(Database& store, Code code, bool with_positions)
      : store_(store), code_(code), with_positions_(with_positions) {}

  // Returns how many words had no record. Lists them in `*new_words`.
  std::size_t Add(const Tokenizer& words, ScratchText* new_words) {
    const Vector<const Word*> unknown = AddToKnownWords(words);
    for (const Word* word : unknown) AddNewWord(*word, new_words);
    return unknown.size();
  }

 private:
  using Word = Tokenizer::Word;

  // Adds the posting to the records of those words that have one. Their order does not matter, for
  // the records change only in memory.
  //   Returns  the other words, in order of their bytes.
  Vector<const Word*> AddToKnownWords(const Tokenizer& words) {
    Vector<DBDatum> keys;
    keys.reserve(words.words().size());
    for (const Word& word : words.words()) keys.push_back(AsDatum(word.bytes));
    Vector<DBDatumPtr> records(keys.size());
    const bool all_read = store_.GetMany(records.data(), keys.data(), keys.size()) == 0;

    Vector<const Word*> unknown;
    auto record = records.begin();
    for (const Word& word : words.words()) {
      bool is_unreadable = false;
      if (record->ptr == nullptr && !all_read) *record = Fetch(store_, word.bytes, &is_unreadable);
      if (record->ptr != nullptr) {
        Append(*record, word);
      } else if (!is_unreadable) {
        unknown.push_back(&word);
      }
      ++record;
    }
    std::sort(unknown.begin(), unknown.end(),
              [](const Word* left, const Word* right) { return left->bytes < right->bytes; });
    return unknown;
  }

  // Creates the record of a word, empty in the file and with the posting in memory.
  void AddNewWord(const Word& word, ScratchText* new_words) {
    store_.Put(AsDatum(word.bytes), AsDatum(""));
    Append(Fetch(store_, word.bytes), word);
    new_words->AppendLine(word.bytes, word.bytes.size() + 2);
  }

  void Append(const DBDatumPtr& record, const Word& word) {
    if (AppendPosting(record.ptr, code_, with_positions_ ? &word.positions : nullptr)) {
      MarkDirty(record);
    } else {
      PrintDiagnostic("Posting record of '%s' is full -- entry left out\n",
                      String(word.bytes).c_str());
    }
  }

  Database& store_;
  const Code code_;
  const bool with_positions_;
};

}  // namespace

Addition AddDocument(Database& store, const DBDatumPtr& reusable_codes, bool with_positions,
                     std::string_view name, std::string_view text, ScratchBuffer* new_words) {
  // Copies: both strings may lie in the buffer, which is written below.
  const String document(name);
  const Tokenizer words(text);
  const bool reuse = CountCodes(*reusable_codes.ptr) != 0;
  // An earlier version stays where nothing could take its place.
  if (!reuse && IsUnreadable(store, kCounterKey)) return {AddOutcome::kUnreadable};
  if (RemoveDocument(store, document) < 0) return {AddOutcome::kUnreadable};
  ScratchText lines(new_words);
  Code code = 0;
  const AddOutcome outcome = reuse ? ReuseCode(reusable_codes, &code) : NextCode(store, &code);
  if (outcome != AddOutcome::kAdded) return {outcome};

  const std::size_t unknown = PostingAdder(store, code, with_positions).Add(words, &lines);
  const auto record = EncodeDocument(Now(), code);
  store.Put(AsDatum(NameKey(code)), AsDatum(document));
  store.Put(AsDatum(ItemKey(kDocumentFamily, document)), AsDatum(record));
  lines.Finish();
  return {AddOutcome::kAdded, unknown};
}

int RemoveDocument(Database& store, std::string_view name) {
  const String key = ItemKey(kDocumentFamily, name);
  bool is_unreadable = false;
  const DBDatumPtr record = Fetch(store, key, &is_unreadable);
  if (record.ptr == nullptr) return is_unreadable ? -1 : 1;
  const Code code = DocumentCode(*record.ptr);
  const DBDatumPtr removed = Fetch(store, kDeletedKey, &is_unreadable);
  if (is_unreadable) return -1;  // the code would be listed nowhere, and nobody could use it again
  if (removed.ptr != nullptr) {
    AppendCode(removed.ptr, code);
    MarkDirty(removed);
  } else {
    store.Put(AsDatum(kDeletedKey), AsDatum(EncodeCode(code)));
  }
  store.Del(AsDatum(NameKey(code)));
  store.Del(AsDatum(key));
  return 0;
}

int RenameDocument(Database& store, std::string_view old_name, std::string_view new_name) {
  const String old_key = ItemKey(kDocumentFamily, old_name);
  bool is_unreadable = false;
  const DBDatumPtr record = Fetch(store, old_key, &is_unreadable);
  if (record.ptr == nullptr) return is_unreadable ? -2 : -1;
  const Code code = DocumentCode(*record.ptr);
  const auto name_key = NameKey(code);
  const DBDatumPtr name = Fetch(store, {name_key.data(), name_key.size()}, &is_unreadable);
  if (is_unreadable) return -2;  // it would keep the old name
  store.Del(AsDatum(old_key));
  SetDocumentTimestamp(record.ptr, Now());
  store.Put(AsDatum(ItemKey(kDocumentFamily, new_name)), *record.ptr);
  if (name.ptr == nullptr) {
    PrintDiagnostic("Could not fetch document for code %d (oops!)\n", code);
    return -1;
  }
  SetName(name.ptr, new_name);
  MarkDirty(name);
  return 0;
}

std::uint32_t TimestampOf(Database& store, std::string_view name) {
  const DBDatumPtr record = Fetch(store, ItemKey(kDocumentFamily, name));
  return record.ptr != nullptr ? DocumentTimestamp(*record.ptr) : 0;
}

}  // namespace kestan
