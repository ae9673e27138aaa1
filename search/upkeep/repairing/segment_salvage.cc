// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/upkeep/repairing/segment_salvage.h"

#include <kestan/index_builder.h>

#include <algorithm>
#include <cerrno>
#include <set>

#include "search/files/numbers.h"
#include "search/segment/plain_index.h"
#include "search/segment/record_keys.h"

namespace kestan::search {
namespace {

constexpr std::size_t kDocumentsBetweenFlushes = 1000;
constexpr std::array<const char*, kDocumentFields> kFieldNames = {"title", "summary", "host data"};

}  // namespace

Status SegmentSalvage::StatusOf(int error) const {
  return StatusOfIndexFile(StoreError{error}, errno, sources_.salvaged_path);
}

Status SegmentSalvage::Open() {
  errno = 0;
  const StoreError error = salvaged_.Open(sources_.salvaged_path.c_str());
  if (error != StoreError::kNone) return SystemError(errno, sources_.salvaged_path);
  if (sources_.table && !sources_.is_confirmed && !HasNamesOf(*sources_.table)) {
    sources_.table.reset();
  }
  highest_ = sources_.table ? static_cast<std::uint32_t>(sources_.table->size())
                            : salvaged_.CountDocuments().highest_code;
  auto damaged = FileBytes::OpenUnmapped(sources_.path);
  if (damaged.ok()) damaged_ = std::move(*damaged);
  return {};
}

// Returns whether half of the documents that the engine has found are those of the table.
bool SegmentSalvage::HasNamesOf(const DocumentTable& table) {
  const std::size_t highest = salvaged_.CountDocuments().highest_code;
  std::size_t found = 0;
  std::size_t same = 0;
  for (std::size_t i = 1; i <= highest; ++i) {
    const std::string name(salvaged_.NameOf(static_cast<Code>(i)));
    if (i % kDocumentsBetweenFlushes == 0) salvaged_.store().Flush();
    if (name.empty()) continue;
    ++found;
    if (i <= table.size() && table.NameOf(static_cast<Code>(i)) == name) ++same;
  }
  return same >= found - same;
}

Result<bool> SegmentSalvage::WordsAgree() {
  with_positions_ = with_positions();
  Status status = ResolveWords(nullptr);
  if (!status.ok()) return status;
  return !places_->counts().any();
}

Result<std::optional<SegmentInfo>> SegmentSalvage::Write(const std::string& target,
                                                         std::uint64_t number, bool with_positions,
                                                         const Edits* edits) {
  with_positions_ = with_positions;
  Status status = ResolveWords(edits);
  if (status.ok()) status = CountWords();
  if (!status.ok()) return status;
  ReportFindings(edits);
  ReportWords();
  ReportDocuments();
  return WriteSegment(target, number, edits);
}

Status SegmentSalvage::ResolveWords(const Edits* edits) {
  Status status = ReadDocuments(edits);
  if (!status.ok()) return status;
  terms_.emplace(SalvagedTerms::Sources{&salvaged_, sources_.salvaged_path, damaged_,
                                        sources_.dictionary ? &*sources_.dictionary : nullptr,
                                        sources_.is_confirmed, with_positions_,
                                        static_cast<Code>(highest_)});
  status = terms_->Find([this](std::string_view key) { return IsOther(key); });
  if (!status.ok()) return status;
  std::vector<std::optional<std::uint32_t>> words;
  for (const Document& document : documents_) words.push_back(document.words);
  places_.emplace(&*terms_, std::move(words));
  return places_->Resolve();
}

// ---- Documents ----

Status SegmentSalvage::ReadDocuments(const Edits* edits) {
  documents_.resize(std::size_t{highest_} + 1);
  std::set<std::string, std::less<>> names;
  for (std::size_t i = 1; i < documents_.size(); ++i) {
    const auto code = static_cast<Code>(i);
    Document& document = documents_[i];
    document = DocumentOf(code);
    if (i % kDocumentsBetweenFlushes == 0) salvaged_.store().Flush();
    if (!sources_.table && document.stored_name.empty()) continue;
    stored_names_.emplace(document.stored_name, code);
    if (edits != nullptr && edits->IsRemoved(code)) document.lives = false;
    if (edits != nullptr && document.lives) ApplyEdit(edits->EditOf(code), &document);
    if (!document.lives || names.insert(document.name).second) continue;
    document.lives = false;
    items_.Add(RepairKind::kNameTwice, sources_.path, document.name, "the first one stays");
  }
  const StoreError error = salvaged_.FileError();
  return error == StoreError::kNone ? Status() : StatusOf(static_cast<int>(error));
}

SegmentSalvage::Document SegmentSalvage::DocumentOf(Code code) {
  Document document;
  if (sources_.table) {
    const DocumentEntry entry = sources_.table->EntryOf(code);
    document.stored_name = entry.name;
    document.words = sources_.table->WordsOf(code);
    document.added = entry.added;
    document.lives = true;
  } else {
    document.stored_name = salvaged_.NameOf(code);
    document.lives = !document.stored_name.empty() && !salvaged_.IsRemoved(code) &&
                     salvaged_.CodeOf(document.stored_name) == code;
    document.added = salvaged_.TimestampOf(document.stored_name);
  }
  document.name = document.stored_name;
  return document;
}

void SegmentSalvage::ApplyEdit(const DocumentEdit* edit, Document* document) const {
  if (edit == nullptr || !edit->name) return;
  document->name = *edit->name;
  document->added = edit->renamed;
}

// ---- Words ----

// Returns whether the record of `key` is none of a word. Of texts only those are known that the
// document table knows.
bool SegmentSalvage::IsOther(std::string_view key) const {
  if (key.size() <= kFamilyBytes || !HasFamilyMark(key)) return false;
  if (IsSingleKey(key)) return true;
  const std::string_view name = key.substr(kFamilyBytes);
  if (key[0] == 'c' && name.size() == sizeof(Code)) {
    const auto code = NumberAt<std::uint16_t>(name.data());
    return code != 0 && code <= highest_;
  }
  const auto found = stored_names_.find(name);
  if (found == stored_names_.end()) return false;
  if (key[0] == 'd') return true;
  for (std::size_t field = 0; sources_.table && field < kDocumentFields; ++field) {
    if (kFieldFamilies[field].front() != key[0]) continue;
    return sources_.table->EntryOf(found->second).fields[field].offset != 0;
  }
  return false;
}

Status SegmentSalvage::CountWords() {
  SalvagedPostings kept;
  for (std::size_t i = 0; i < terms_->size(); ++i) {
    Status status = places_->Read(i, &kept);
    if (!status.ok()) return status;
    const bool is_folded = IsFolded(terms_->TermAt(i));
    for (const SalvagedPosting& posting : kept) {
      Document& document = documents_[posting.code];
      if (is_folded) document.folded += std::max<std::size_t>(posting.positions, 1);
      for (const Position position : kept.PositionsOf(posting)) {
        document.highest = std::max<std::uint32_t>(document.highest, position);
      }
    }
  }
  return {};
}

std::uint32_t SegmentSalvage::Document::WordsAtLeast() const {
  const std::uint64_t found = std::max<std::uint64_t>(folded, highest);
  return static_cast<std::uint32_t>(
      std::min<std::uint64_t>(std::max<std::uint64_t>(found, words.value_or(0)), UINT32_MAX));
}

// ---- Report ----

void SegmentSalvage::Note(const std::string& what, std::uint64_t count) {
  if (count == 0) return;
  items_.Add(RepairKind::kFileNote, sources_.path, "", what + ": " + std::to_string(count));
}

void SegmentSalvage::ReportWords() {
  const SalvagedTerms& terms = *terms_;
  const WordPlaces::Counts& counts = places_->counts();
  if (terms.lost() > 0) {
    items_.Add(RepairKind::kWordsLost, sources_.path, "",
               "words of which nothing was found: " + std::to_string(terms.lost()));
  }
  Note("words of which parts may be lost or wrong", terms.doubted());
  Note("words that its term dictionary lacks, left out", terms.unknown());
  Note("positions behind the last word of a document, left out", counts.behind);
  Note("positions that several words had, left to one of them", counts.shared);
  Note("words with capitals where another word stands, left out", counts.forms);
  Note("case-folded forms restored from words with capitals", counts.restored);
}

// What the engine says of documents and records is of use where nobody knows better.
void SegmentSalvage::ReportFindings(const Edits* edits) {
  for (const RepairItem& item : sources_.findings) {
    const bool is_of_record =
        item.kind == RepairKind::kRestored || item.kind == RepairKind::kDropped;
    const bool is_of_lost = item.kind == RepairKind::kLost || item.kind == RepairKind::kLostCode;
    const bool is_of_removed = item.kind == RepairKind::kLostCode && edits != nullptr &&
                               edits->IsRemoved(static_cast<Code>(std::stoul(item.name)));
    const bool is_new = (is_of_record && !(sources_.table && terms_->has_dictionary())) ||
                        (is_of_lost && !sources_.table && !is_of_removed);
    if (is_new || item.kind == RepairKind::kFileNote) {
      items_.Add(item.kind, sources_.path, item.name, item.text);
    }
  }
}

void SegmentSalvage::ReportDocuments() {
  const bool is_whole = terms_->has_dictionary() && terms_->lost() == 0 && terms_->doubted() == 0 &&
                        !places_->counts().any();
  for (const Document& document : documents_) {
    if (document.lives) ReportDocument(document, is_whole);
  }
}

// The table counts words too that the segment had no room for. So where nothing was lost, nothing
// is missing.
void SegmentSalvage::ReportDocument(const Document& document, bool is_whole) {
  const std::uint64_t words = document.WordsAtLeast();
  const bool should_have_words = document.words.value_or(1) > 0;
  if (!is_whole && document.folded == 0 && should_have_words) {
    items_.Add(RepairKind::kHalfWritten, sources_.path, document.name, "no words");
  } else if (!is_whole && with_positions_ && document.folded < words) {
    items_.Add(
        RepairKind::kWordsMissing, sources_.path, document.name,
        "at least " + std::to_string(words - document.folded) + " of " + std::to_string(words));
  } else {
    items_.Add(RepairKind::kSaved, sources_.path, document.name);
  }
}

// ---- Writing ----

Result<std::optional<SegmentInfo>> SegmentSalvage::WriteSegment(const std::string& target,
                                                                std::uint64_t number,
                                                                const Edits* edits) {
  std::vector<Code> new_codes(documents_.size());
  Code last = 0;
  for (std::size_t i = 1; i < documents_.size(); ++i) {
    if (documents_[i].lives) new_codes[i] = ++last;
  }
  if (last == 0) return std::optional<SegmentInfo>();
  SegmentWriter writer;
  Status status = writer.Create(target, number, with_positions_, last, terms_->size());
  for (std::size_t i = 1; status.ok() && i < documents_.size(); ++i) {
    const auto code = static_cast<Code>(i);
    if (new_codes[i] == 0) continue;
    status = WriteDocument(code, edits != nullptr ? edits->EditOf(code) : nullptr, &writer);
  }
  if (status.ok()) status = WriteWords(new_codes, &writer);
  if (!status.ok()) return status;
  const Result<SegmentInfo> info = writer.Finish(Syncing::kLater);
  if (!info.ok()) return info.status();
  return std::optional<SegmentInfo>(*info);
}

Status SegmentSalvage::WriteDocument(Code code, const DocumentEdit* edit, SegmentWriter* writer) {
  const Document& document = documents_[code];
  std::array<std::string, kDocumentFields> fields;
  SegmentDocument written;
  for (std::size_t i = 0; i < kDocumentFields; ++i) {
    if (edit != nullptr && edit->fields[i]) {
      fields[i] = *edit->fields[i];
    } else {
      Result<std::string> text = TextOf(code, i);
      if (!text.ok()) return text.status();
      fields[i] = std::move(*text);
    }
    written.fields[i] = fields[i];
  }
  written.name = document.name;
  written.words = document.WordsAtLeast();
  written.added = document.added;
  writer->AddDocument(written);
  if (code % kDocumentsBetweenFlushes == 0) salvaged_.store().Flush();
  return {};
}

// Returns a text of a document, from the place that the table names if its key is there. Reports
// one that is lost.
Result<std::string> SegmentSalvage::TextOf(Code code, std::size_t field) {
  const Document& document = documents_[code];
  const std::string key = std::string(kFieldFamilies[field]).append(document.stored_name);
  RecordPlace place;
  if (sources_.table) {
    place = sources_.table->EntryOf(code).fields[field];
    if (place.offset == 0) return std::string();
    const std::uint64_t bytes = std::uint64_t{place.key_bytes} + place.value_bytes;
    const Bytes record = damaged_ != nullptr ? damaged_->Read(place.offset, bytes) : Bytes();
    if (record.view().size() == bytes && record.view().substr(0, key.size()) == key) {
      return std::string(record.view().substr(key.size()));
    }
  }
  DBDatumPtr value;
  const DBDatum wanted(key.data(), static_cast<std::uint32_t>(key.size()));
  const int error = salvaged_.store().Get(&value, wanted);
  if (Database::IsReadFailure(error)) return StatusOf(error);
  const std::string_view text = value.ptr != nullptr
                                    ? std::string_view(value.ptr->data, value.ptr->size)
                                    : std::string_view();
  const bool is_word = !sources_.table && (terms_->IndexOf(key) != terms_->size() ||
                                           LooksLikePostings(text, with_positions_));
  if (value.ptr != nullptr && !is_word) return std::string(text);
  if (sources_.table) {
    items_.Add(RepairKind::kTextLost, sources_.path, document.name, kFieldNames[field]);
  }
  return std::string();
}

Status SegmentSalvage::WriteWords(const std::vector<Code>& new_codes, SegmentWriter* writer) {
  SalvagedPostings kept;
  std::string record;
  for (std::size_t i = 0; i < terms_->size(); ++i) {
    Status status = places_->Read(i, &kept);
    if (!status.ok()) return status;
    std::uint32_t documents = 0;
    record.clear();
    for (const SalvagedPosting& posting : kept) {
      const Code code = new_codes[posting.code];
      if (code == 0) continue;
      ++documents;
      if (with_positions_) AppendPosting(code, kept.PositionsOf(posting), &record);
      if (!with_positions_) AppendPosting(code, &record);
    }
    if (documents > 0) writer->AddTerm(terms_->TermAt(i), documents, record);
  }
  return {};
}

}  // namespace kestan::search
