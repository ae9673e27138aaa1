// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/upkeep/repairing/salvaged_terms.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "search/segment/plain_index.h"
#include "search/segment/record_keys.h"

namespace kestan::search {
namespace {

constexpr std::size_t kRecordsBetweenFlushes = 1000;

std::string Folded(std::string_view word) {
  std::string folded(word);
  for (char& byte : folded) byte = static_cast<char>(byte | 0x20);
  return folded;
}

std::string_view BytesOf(const DBDatum& datum) { return {datum.data, datum.size}; }

}  // namespace

Status SalvagedTerms::StatusOf(int error) const {
  return StatusOfIndexFile(StoreError{error}, errno, sources_.salvaged_path);
}

// ---- Finding them ----

Status SalvagedTerms::Find(const IsOther& is_other) {
  Status status = FindStored(is_other);
  if (status.ok() && sources_.dictionary != nullptr) status = FindListed();
  if (!status.ok()) return status;
  AddFoldedForms();
  return CountRecords();
}

// Takes the words of the dictionary instead of those whose records were found.
Status SalvagedTerms::FindListed() {
  std::vector<Term> stored = std::move(terms_);
  terms_.clear();
  Status status = sources_.dictionary->ForEach("", [&](const TermEntry& entry) {
    terms_.push_back({std::string(entry.term), entry.documents, entry.place});
    return true;
  });
  if (!status.ok()) return status;
  for (const Term& term : stored) unknown_ += IndexOf(term.term) == size() ? 1 : 0;
  has_dictionary_ = sources_.is_confirmed || unknown_ <= stored.size() / 2;
  if (has_dictionary_) return {};
  terms_ = std::move(stored);
  unknown_ = 0;
  return {};
}

Status SalvagedTerms::FindStored(const IsOther& is_other) {
  Database& store = sources_.salvaged->store();
  std::size_t records = 0;
  DBDatumPtr key;
  DBDatumPtr value;
  for (int error = store.First(&key, &value); key.ptr != nullptr;
       error = store.Next(&key, &value)) {
    if (error != 0) return StatusOf(error);
    if (IsWord(BytesOf(*key.ptr), BytesOf(*value.ptr), is_other)) {
      terms_.push_back({std::string(BytesOf(*key.ptr)), 0, {}});
    }
    if (++records % kRecordsBetweenFlushes == 0) {
      value.Free();
      store.Flush();
    }
  }
  value.Free();
  store.Flush();
  if (store.WalkError() != 0) return StatusOf(store.WalkError());
  std::sort(terms_.begin(), terms_.end(),
            [](const Term& left, const Term& right) { return left.term < right.term; });
  return {};
}

// Text has no shape of postings. So a key that may be that of other records is a word's only if its
// record is sound.
bool SalvagedTerms::IsWord(std::string_view key, std::string_view value,
                           const IsOther& is_other) const {
  if (is_other(key)) return false;
  SalvagedPostings postings;
  const bool is_sound = postings.Read(value, with_positions(), highest());
  return is_sound || (!postings.empty() && !HasFamilyMark(key));
}

void SalvagedTerms::AddFoldedForms() {
  if (has_dictionary_) return;
  std::vector<Term> missing;
  for (const Term& term : terms_) {
    if (IsFolded(term.term) || HasFamilyMark(term.term)) continue;
    std::string folded = Folded(term.term);
    if (IndexOf(folded) == size()) missing.push_back({std::move(folded), 0, {}});
  }
  const auto by_term = [](const Term& left, const Term& right) { return left.term < right.term; };
  const auto is_same = [](const Term& left, const Term& right) { return left.term == right.term; };
  terms_.insert(terms_.end(), missing.begin(), missing.end());
  std::sort(terms_.begin(), terms_.end(), by_term);
  terms_.erase(std::unique(terms_.begin(), terms_.end(), is_same), terms_.end());
}

Status SalvagedTerms::CountRecords() {
  SalvagedPostings postings;
  for (std::size_t i = 0; i < size(); ++i) {
    Trust trust = Trust::kNone;
    Status status = ReadTrusted(i, &postings, &trust);
    if (!status.ok()) return status;
    if (trust == Trust::kDoubted) ++doubted_;
    if (trust == Trust::kNone && has_dictionary_) ++lost_;
  }
  return {};
}

std::size_t SalvagedTerms::IndexOf(std::string_view term) const {
  const auto found =
      std::lower_bound(terms_.begin(), terms_.end(), term,
                       [](const Term& left, std::string_view right) { return left.term < right; });
  const bool is_there = found != terms_.end() && found->term == term;
  return is_there ? static_cast<std::size_t>(found - terms_.begin()) : size();
}

std::size_t SalvagedTerms::FoldedForm(std::size_t index) const {
  const std::string_view term = TermAt(index);
  return IsFolded(term) || HasFamilyMark(term) ? size() : IndexOf(Folded(term));
}

// ---- Reading them ----

Status SalvagedTerms::Read(std::size_t index, SalvagedPostings* postings) {
  Trust trust = Trust::kNone;
  return ReadTrusted(index, postings, &trust);
}

Status SalvagedTerms::ReadTrusted(std::size_t index, SalvagedPostings* postings, Trust* trust) {
  const Term& term = terms_[index];
  *trust = Trust::kSound;
  if (ReadAtPlace(term, true, postings)) return {};
  bool is_sound = false;
  Status status = ReadStored(term, postings, &is_sound);
  if (!status.ok() || is_sound) return status;
  *trust = Trust::kDoubted;
  if (with_positions() || postings->empty()) ReadDoubted(term, postings);
  if (postings->empty()) *trust = Trust::kNone;
  postings->DoubtAll();
  return {};
}

// Reads what the place of the record has that the engine did not take for one: the value behind a
// damaged key, or part of a damaged value. Without positions, nothing would contradict the former.
void SalvagedTerms::ReadDoubted(const Term& term, SalvagedPostings* postings) const {
  SalvagedPostings at_place;
  if (with_positions() && ReadAtPlace(term, false, &at_place)) {
    *postings = std::move(at_place);
  } else if (postings->empty()) {
    const std::optional<Bytes> record = RecordAt(term, true);
    if (record) postings->Read(record->view(), with_positions(), highest());
  }
}

// Returns the value at the place of the record; nothing where it has another key and needs its own.
std::optional<Bytes> SalvagedTerms::RecordAt(const Term& term, bool with_key) const {
  if (term.place.offset == 0 || sources_.damaged == nullptr) return std::nullopt;
  const std::uint64_t bytes = std::uint64_t{term.place.key_bytes} + term.place.value_bytes;
  Bytes record = sources_.damaged->Read(term.place.offset, bytes);
  if (record.view().size() != bytes) return std::nullopt;
  if (with_key && record.view().substr(0, term.place.key_bytes) != term.term) return std::nullopt;
  record.RemovePrefix(term.place.key_bytes);
  return record;
}

bool SalvagedTerms::ReadAtPlace(const Term& term, bool with_key, SalvagedPostings* postings) const {
  const std::optional<Bytes> record = RecordAt(term, with_key);
  return record && IsSound(term, record->view(), postings);
}

Status SalvagedTerms::ReadStored(const Term& term, SalvagedPostings* postings, bool* is_sound) {
  Database& store = sources_.salvaged->store();
  if (++reads_ % kRecordsBetweenFlushes == 0) store.Flush();
  postings->Clear();
  DBDatumPtr value;
  const DBDatum key(term.term.data(), static_cast<std::uint32_t>(term.term.size()));
  const int error = store.Get(&value, key);
  if (Database::IsReadFailure(error)) return StatusOf(error);
  *is_sound = value.ptr != nullptr && IsSound(term, BytesOf(*value.ptr), postings);
  return {};
}

bool SalvagedTerms::IsSound(const Term& term, std::string_view record,
                            SalvagedPostings* postings) const {
  const bool is_sound = postings->Read(record, with_positions(), highest());
  if (term.documents == 0) return is_sound;
  const auto found = static_cast<std::size_t>(postings->end() - postings->begin());
  const bool has_size = term.place.offset == 0 || term.place.value_bytes == record.size();
  return is_sound && found == term.documents && has_size;
}

}  // namespace kestan::search
