// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/indexing/short_words.h>

#include <kestan/format/document_record.h>
#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>
#include <kestan/format/posting.h>
#include <kestan/format/posting_list.h>
#include <kestan/format/record_kind.h>
#include <kestan/format/units.h>
#include <kestan/storage/memory/memory.h>
#include <kestan/storage/walk/flush_policy.h>

#include <array>
#include <string_view>

namespace kestan {
namespace {

constexpr int kDamaged = -2;

// Fetches the value of `key`; `*value` is null if there is no such record.
//   Returns  0, -1 without a file, or gdbm's number of a read failure.
int Read(Database& store, std::string_view key, DBDatumPtr* value) {
  const int error = store.Get(value, AsDatum(key));
  return error == -1 || Database::IsReadFailure(error) ? error : 0;
}

// Calls `visit(word)` for each short word there can be, until one call returns an error.
//   Returns  that error or 0.
template <typename Visit>
int ForEachShortWord(Visit visit) {
  constexpr int kBytes = 256;
  for (int byte = 0; byte < kBytes; ++byte) {
    const std::array<char, 2> word{static_cast<char>(byte), '-'};
    for (std::size_t size = 1; size <= word.size(); ++size) {
      if (const int error = visit({word.data(), size}); error != 0) return error;
    }
  }
  return 0;
}

// The codes that no document has. A code that the lists call free is not free if it has a name
// record, for a damaged list must not cost a document its words.
class FreeCodes {
 public:
  explicit FreeCodes(Database& store) : store_(store) {}

  //   Returns  0, -1 without a file, or gdbm's number of a read failure.
  int Gather(Code highest, bool removed_too) {
    DBDatumPtr removed;
    DBDatumPtr reusable;
    if (const int error = Read(store_, kDeletedKey, &removed); error != 0) return error;
    if (const int error = Read(store_, kAvailableKey, &reusable); error != 0) return error;
    for (unsigned code = highest + 1u; code <= kMaxCode; ++code) reusable_.set(code);
    reusable_.set(0);
    if (reusable.ptr != nullptr) CollectCodes(*reusable.ptr, &reusable_);
    all_ = reusable_;
    if (removed_too && removed.ptr != nullptr) CollectCodes(*removed.ptr, &all_);
    return 0;
  }

  bool Has(Code code) {
    if (!all_[code]) return false;
    if (!looked_up_[code] && HasName(code)) all_.reset(code);
    looked_up_.set(code);
    return all_[code];
  }

  // Returns whether the next document may get `code`, for which Has() has returned true.
  bool IsReusable(Code code) const { return reusable_[code]; }

  // Returns all free codes. Those that were not passed to Has() are as the lists say.
  const CodeSet& all() const { return all_; }

  // Returns gdbm's number of the first read failure of Has(), 0 if there was none.
  int error() const { return error_; }

 private:
  // A name record that cannot be read counts as one.
  bool HasName(Code code) {
    const auto key = NameKey(code);
    DBDatumPtr name;
    const int error = Read(store_, {key.data(), key.size()}, &name);
    if (error_ == 0) error_ = error;
    return error != 0 || name.ptr != nullptr;
  }

  Database& store_;
  CodeSet reusable_;
  CodeSet all_;  // perhaps also those of removed documents, which a shrink makes reusable
  CodeSet looked_up_;
  int error_ = 0;
};

class ShortWordPurge {
 public:
  explicit ShortWordPurge(Database& store) : store_(store), free_(store) {}

  // Finds the words to purge. Changes nothing.
  int Plan(bool removed_too) {
    if (const int error = ReadRules(); error != 0) return error;
    if (const int error = free_.Gather(rules_.highest, removed_too); error != 0) return error;
    PeriodicFlush flush(store_);
    return ForEachShortWord([&](std::string_view word) {
      DBDatumPtr postings;
      if (const int error = Read(store_, word, &postings); error != 0) return error;
      if (postings.ptr == nullptr) return 0;
      if (const int error = Judge(word, *postings.ptr); error != 0) return error;
      const std::size_t bytes = postings.ptr->size;
      postings.Free();
      return flush.Note(bytes);
    });
  }

  int CarryOut() {
    PeriodicFlush flush(store_);
    for (const String& word : words_) {
      DBDatumPtr postings;
      if (const int error = Read(store_, word, &postings); error != 0) return error;
      if (postings.ptr == nullptr) continue;
      PurgePostings(postings.ptr, free_.all(), rules_.with_positions);
      postings.ptr->dirty = true;
      const std::size_t bytes = postings.ptr->size;
      postings.Free();
      if (const int error = flush.Note(bytes); error != 0) return error;
    }
    return 0;
  }

 private:
  int ReadRules() {
    DBDatumPtr record;
    if (const int error = Read(store_, kOptionsKey, &record); error != 0) return error;
    if (const int error = Read(store_, kCounterKey, &record); error != 0) return error;
    rules_ = ReadPostingRules(store_);
    return 0;
  }

  int Judge(std::string_view word, const DBDatum& postings) {
    if (KindOf(AsDatum(word), &postings, rules_) != RecordKind::kPosting) return 0;
    bool has_free = false;
    bool has_reusable = false;
    PostingReader reader(postings, rules_.with_positions);
    Posting posting{};
    while (reader.Next(&posting)) {
      if (!free_.Has(posting.code)) continue;
      has_free = true;
      if (free_.IsReusable(posting.code)) has_reusable = true;
    }
    if (free_.error() != 0) return free_.error();
    if (!has_free) return 0;
    if (IsWhole(postings)) words_.emplace_back(word);
    return has_reusable && !IsWhole(postings) ? kDamaged : 0;
  }

  // Returns whether the record is nothing but postings and the last one is not cut.
  bool IsWhole(const DBDatum& postings) const {
    if (HasOddByte(postings)) return false;
    if (!rules_.with_positions) return true;
    PostingReader reader(postings, true);
    Posting last{};
    while (reader.Next(&last)) continue;
    return last.units >= kUnitsBeforePositions && StatedPositions(postings, last) == last.positions;
  }

  Database& store_;
  FreeCodes free_;
  PostingRules rules_;
  Vector<String> words_;  // with postings of free codes
};

}  // namespace

// Plans before it writes, so that damage is found while nothing is changed yet.
int PurgePostingsOfShortWords(Database& store, bool removed_too) {
  ShortWordPurge purge(store);
  if (const int error = purge.Plan(removed_too); error != 0) return error;
  return purge.CarryOut();
}

}  // namespace kestan
