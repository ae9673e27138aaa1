// Adding, removing and renaming documents.
#include <kestan/engine/kestan.h>
#include <kestan/format/keys.h>
#include <kestan/format/records.h>
#include <kestan/indexing/tokenizer.h>
#include <kestan/storage/memory.h>
#include <kestan/text/scratch_text.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

using kestan::AsDatum;
using kestan::Code;
using kestan::DocumentWords;
using kestan::Fetch;
using kestan::ItemKey;
using kestan::kEngineName;

std::uint32_t Now() { return static_cast<std::uint32_t>(std::time(nullptr)); }

bool IsUnreadable(Database& store, std::string_view key) {
  bool is_unreadable = false;
  Fetch(store, key, &is_unreadable);
  return is_unreadable;
}

void MarkDirty(const DBDatumPtr& value) { value.ptr->dirty = true; }

// Counts one code further.
//   Returns  the code; 0 if every code has been handed out, which it says, or nobody knows how
//   many.
Code NextCode(Database& store) {
  bool is_unreadable = false;
  const DBDatumPtr counter = Fetch(store, kestan::kCounterKey, &is_unreadable);
  if (is_unreadable) return 0;
  if (counter.ptr == nullptr) {
    store.Put(AsDatum(kestan::kCounterKey), AsDatum(kestan::EncodeCode(1)));
    return 1;
  }
  const Code highest = kestan::DecodeCounter(*counter.ptr);
  if (highest == kestan::kMaxCode) {
    std::fprintf(stderr, "%s: Too many documents (max=65535) -- try shrinking database\n",
                 kEngineName);
    return 0;
  }
  kestan::SetCounter(counter.ptr, static_cast<Code>(highest + 1));
  MarkDirty(counter);
  return static_cast<Code>(highest + 1);
}

// Takes the code that became reusable last.
Code ReuseCode(const DBDatumPtr& available) {
  const Code code = kestan::TakeLastCode(available.ptr);
  MarkDirty(available);
  if (code == 0) {
    std::fprintf(stderr, "%s: Attempted to use code #0 (oops!)\n", kEngineName);
    std::exit(1);
  }
  return code;
}

using Word = DocumentWords::Word;

// The one new entry of each posting record that a document touches.
struct Entry {
  Code code;
  bool with_positions;
};

void AddEntry(const DBDatumPtr& record, const Word& word, Entry entry) {
  if (kestan::AppendPosting(record.ptr, entry.code,
                            entry.with_positions ? &word.positions : nullptr)) {
    MarkDirty(record);
  } else {
    std::fprintf(stderr, "%s: Posting record of '%s' is full -- entry left out\n", kEngineName,
                 kestan::String(word.bytes).c_str());
  }
}

// Adds the entry to the records of those words that have one. Their order does not matter, for the
// records change only in memory.
//   Returns  the other words, in order of their bytes.
kestan::Vector<const Word*> PostKnownWords(Database& store, const DocumentWords& words,
                                           Entry entry) {
  kestan::Vector<DBDatum> keys;
  keys.reserve(words.words().size());
  for (const Word& word : words.words()) keys.push_back(AsDatum(word.bytes));
  kestan::Vector<DBDatumPtr> records(keys.size());
  const bool all_read = store.GetMany(records.data(), keys.data(), keys.size()) == 0;

  kestan::Vector<const Word*> unknown;
  auto record = records.begin();
  for (const Word& word : words.words()) {
    bool is_unreadable = false;
    if (record->ptr == nullptr && !all_read) *record = Fetch(store, word.bytes, &is_unreadable);
    if (record->ptr != nullptr) {
      AddEntry(*record, word, entry);
    } else if (!is_unreadable) {
      unknown.push_back(&word);
    }
    ++record;
  }
  std::sort(unknown.begin(), unknown.end(),
            [](const Word* left, const Word* right) { return left->bytes < right->bytes; });
  return unknown;
}

// Creates a record for each of `words`, empty in the file and with the entry in memory, and adds
// the word to `lines`.
void PostNewWords(Database& store, const kestan::Vector<const Word*>& words, Entry entry,
                  kestan::ScratchText* lines) {
  for (const Word* word : words) {
    store.Put(AsDatum(word->bytes), AsDatum(""));
    AddEntry(Fetch(store, word->bytes), *word, entry);
    lines->AppendLine(word->bytes, word->bytes.size() + 2);
  }
}

}  // namespace

const char* Kestan::AddDocumentWords(const char* name, const char* text) {
  // Copies: both strings may lie in the scratch buffer, which is written below.
  const kestan::String document(name);
  const DocumentWords words(text);
  const bool reuse = IsOpen() && kestan::CountCodes(*AvailCodes.ptr) != 0;
  // An earlier version stays where nothing could take its place.
  if (IsOpen() && !reuse && IsUnreadable(store_, kestan::kCounterKey)) return "";
  if (RemoveDocumentWords(document.c_str()) < 0 || !IsOpen()) return "";
  kestan::ScratchText lines;
  const Code code = reuse ? ReuseCode(AvailCodes) : NextCode(store_);
  if (code == 0) return "";

  const Entry entry{code, (OptionFlags & kestan::kFlagNoPositions) == 0};
  PostNewWords(store_, PostKnownWords(store_, words, entry), entry, &lines);
  const auto record = kestan::EncodeDocument(Now(), code);
  store_.Put(AsDatum(kestan::NameKey(code)), AsDatum(document));
  store_.Put(AsDatum(ItemKey(kestan::kDocumentFamily, document)), AsDatum(record));
  return lines.Finish();
}

int Kestan::RemoveDocumentWords(const char* name) {
  const kestan::String key = ItemKey(kestan::kDocumentFamily, name);
  bool is_unreadable = false;
  const DBDatumPtr record = Fetch(store_, key, &is_unreadable);
  if (record.ptr == nullptr) return is_unreadable ? -1 : 1;
  const Code code = kestan::DocumentCode(*record.ptr);
  const DBDatumPtr deleted = Fetch(store_, kestan::kDeletedKey, &is_unreadable);
  if (is_unreadable) return -1;  // the code would be listed nowhere, and nobody could use it again
  if (deleted.ptr != nullptr) {
    kestan::AppendCode(deleted.ptr, code);
    MarkDirty(deleted);
  } else {
    store_.Put(AsDatum(kestan::kDeletedKey), AsDatum(kestan::EncodeCode(code)));
  }
  store_.Del(AsDatum(kestan::NameKey(code)));
  store_.Del(AsDatum(key));
  return 0;
}

int Kestan::MoveDocumentWords(const char* oldname, const char* newname) {
  const kestan::String old_key = ItemKey(kestan::kDocumentFamily, oldname);
  bool is_unreadable = false;
  const DBDatumPtr record = Fetch(store_, old_key, &is_unreadable);
  if (record.ptr == nullptr) return is_unreadable ? -2 : -1;
  const Code code = kestan::DocumentCode(*record.ptr);
  const auto name_key = kestan::NameKey(code);
  const DBDatumPtr name = Fetch(store_, {name_key.data(), name_key.size()}, &is_unreadable);
  if (is_unreadable) return -2;  // it would keep the old name
  store_.Del(AsDatum(old_key));
  kestan::SetDocumentTimestamp(record.ptr, Now());
  store_.Put(AsDatum(ItemKey(kestan::kDocumentFamily, newname)), *record.ptr);
  if (name.ptr == nullptr) {
    std::fprintf(stderr, "%s: Could not fetch document for code %d (oops!)\n", kEngineName, code);
    return -1;
  }
  kestan::SetName(name.ptr, newname);
  MarkDirty(name);
  return 0;
}

std::uint32_t Kestan::DocumentTimestamp(const char* name) {
  const DBDatumPtr record = Fetch(store_, ItemKey(kestan::kDocumentFamily, name));
  return record.ptr != nullptr ? kestan::DocumentTimestamp(*record.ptr) : 0;
}
