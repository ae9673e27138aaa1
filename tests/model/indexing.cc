// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/model/model.h"
#include "tests/model/units.h"

namespace kestan_model {
namespace {

constexpr std::size_t kMostPositions = 65535;

using WordTable = std::map<std::string, std::vector<unsigned>>;  // the positions of each word

std::string Folded(std::string word) {
  for (char& byte : word) byte = static_cast<char>(byte | 0x20);
  return word;
}

void Note(WordTable* table, const std::string& word, unsigned position) {
  std::vector<unsigned>& positions = (*table)[word];
  if (positions.size() < kMostPositions) positions.push_back(position);
}

WordTable WordsOf(const std::string& text) {
  WordTable table;
  unsigned position = 1;
  std::string word;
  for (const char byte : text + ' ') {
    if (!IsBlank(byte)) {
      word += byte;
      continue;
    }
    if (word.empty()) continue;
    Note(&table, word, position);
    if (Folded(word) != word) Note(&table, Folded(word), position);
    position = position == 65535 ? 1 : position + 1;
    word.clear();
  }
  return table;
}

std::string NameKey(unsigned code) { return "c-" + BytesOf(code, 2); }

unsigned CodeOf(const Value& document) { return NumberAt(document->bytes, 4, 2); }

}  // namespace

bool Model::MustNotAdd() const {
  if (!store_.IsOpen()) return true;
  const std::vector<unsigned> codes = UnitsOf(avail_codes_->bytes);
  return !codes.empty() && codes.back() == 0;
}

// The next document's code; 0 if there is none left.
unsigned Model::TakeCode() {
  std::vector<unsigned> codes = UnitsOf(avail_codes_->bytes);
  if (!codes.empty()) {
    const unsigned code = codes.back();
    codes.pop_back();
    *avail_codes_ = Cell{RecordOf(codes), true};
    return code;
  }
  const Value counter = store_.Get("g-code");
  if (counter == nullptr) {
    store_.Put("g-code", BytesOf(1, 2));
    return 1;
  }
  const unsigned highest = NumberAt(counter->bytes, 0, 2);
  if (highest == 65535) {
    process_.said += "Kestan: Too many documents (max=65535) -- try shrinking database\n";
    return 0;
  }
  counter->bytes = counter->bytes.size() < 2 ? "" : counter->bytes.substr(2);
  counter->bytes = BytesOf(highest + 1, 2) + counter->bytes;
  counter->dirty = true;
  return highest + 1;
}

// A record that is new is in the file at once, but empty until the next flush.
void Model::AppendPosting(const std::string& word, unsigned code,
                          const std::vector<unsigned>& positions, Lines* new_words) {
  Value record = store_.Get(word);
  if (record == nullptr) {
    store_.Put(word, "");
    record = store_.Get(word);
    new_words->Add(word, word.size() + 2);
  }
  record->bytes += BytesOf(code, 2);
  if (PositionsKept()) {
    record->bytes += BytesOf(static_cast<std::uint32_t>(positions.size()), 2);
    record->bytes += RecordOf(positions);
  }
  record->dirty = true;
}

Text Model::AddDocumentWords(const std::string& name, const std::string& text) {
  RemoveDocumentWords(name);
  Lines new_words(process_);
  const unsigned code = TakeCode();
  if (code == 0) return ConstantEmpty();
  for (const auto& [word, positions] : WordsOf(text)) {
    AppendPosting(word, code, positions, &new_words);
  }
  store_.Put(NameKey(code), name);
  store_.Put("d-" + name, BytesOf(process_.now, 4) + BytesOf(code, 4));
  return new_words.Finish();
}

int Model::RemoveDocumentWords(const std::string& name) {
  const Value document = store_.Get("d-" + name);
  if (document == nullptr) return 1;
  const unsigned code = CodeOf(document);
  const Value deleted = store_.Get("g-deleted");
  if (deleted == nullptr) {
    store_.Put("g-deleted", BytesOf(code, 2));
  } else {
    *deleted = Cell{RecordOf(UnitsOf(deleted->bytes)) + BytesOf(code, 2), true};
  }
  store_.Del(NameKey(code));
  store_.Del("d-" + name);
  return 0;
}

int Model::MoveDocumentWords(const std::string& oldname, const std::string& newname) {
  const Value document = store_.Get("d-" + oldname);
  if (document == nullptr) return -1;
  store_.Del("d-" + oldname);
  const unsigned code = CodeOf(document);
  if (document->bytes.size() < 8) document->bytes.resize(8, '\0');
  document->bytes.replace(0, 4, BytesOf(process_.now, 4));
  store_.Share("d-" + newname, document);
  const Value stored_name = store_.Get(NameKey(code));
  if (stored_name == nullptr) {
    process_.said +=
        "Kestan: Could not fetch document for code " + std::to_string(code) + " (oops!)\n";
    return -1;
  }
  *stored_name = Cell{newname, true};
  return 0;
}

std::uint32_t Model::DocumentTimestamp(const std::string& name) {
  const Value document = store_.Get("d-" + name);
  return document == nullptr ? 0 : NumberAt(document->bytes, 0, 4);
}

// One-byte words are passed over, unlike everywhere else.
void Model::PurgePostings(const std::set<unsigned>& codes) {
  store_.ForEach([&](const std::string& key, const Value& value) {
    if (key.size() < 2 || key[1] == '-') return;
    std::string kept;
    bool purged = false;
    for (const Posting& posting : PostingsOf(value->bytes, PositionsKept())) {
      if (codes.count(posting.code) == 0) {
        kept += RecordOf(posting.units);
      } else {
        purged = true;
      }
    }
    if (purged) *value = Cell{kept, true};
  });
}

int Model::ShrinkIndex() {
  const Value deleted = store_.Get("g-deleted");
  if (deleted != nullptr) {
    const std::vector<unsigned> codes = UnitsOf(deleted->bytes);
    std::set<unsigned> purged(codes.begin(), codes.end());
    purged.insert(0);  // no document's code, but a damaged record may hold it
    PurgePostings(purged);
    std::vector<unsigned> avail = UnitsOf(avail_codes_->bytes);
    const bool was_empty = avail.empty();
    avail.insert(avail.end(), codes.begin(), codes.end());
    *avail_codes_ = Cell{RecordOf(avail), true};
    store_.Del("g-deleted");
    if (was_empty) store_.Share("g-avail", avail_codes_);
  }
  return store_.Shrink();
}

}  // namespace kestan_model
