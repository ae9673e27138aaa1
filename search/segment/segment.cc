// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/segment/segment.h"

#include <kestan/storage/database.h>
#include <kestan/storage/dbdatum.h>

#include <array>
#include <cerrno>
#include <limits>
#include <utility>

#include "search/files/descriptor.h"
#include "search/files/numbers.h"
#include "search/files/output_file.h"
#include "search/process/owning_process.h"
#include "search/segment/plain_index.h"
#include "search/segment/record_keys.h"

namespace kestan::search {
namespace {

// Returns whether a posting record of so many documents can have so many bytes: two for each code,
// with positions two more for their number, and two for each of them.
bool CanBeRecord(std::uint64_t bytes, std::uint32_t documents, bool with_positions) {
  if (!with_positions) return bytes == std::uint64_t{documents} * 2;
  return bytes % 2 == 0 && bytes >= std::uint64_t{documents} * 4;
}

constexpr std::array<SideRecord, kDocumentFields> kSideRecords = {
    SideRecord::kTitle, SideRecord::kSummary, SideRecord::kUser};

Status Contradiction(const std::string& what, const std::string& file) {
  return {StatusCode::kDamaged, "it has other " + what + " than MANIFEST says", file};
}

Status WasForked(const std::string& file) {
  return {StatusCode::kForked,
          "the index file was opened by the process that forked this one; open it again here",
          file};
}

Status OfAnotherSegment(const std::string& file) {
  return {StatusCode::kDamaged, "it belongs to another segment", file};
}

}  // namespace

// ---- Files ----

struct Segment::Files {
  Files(std::shared_ptr<const FileBytes> bytes, TermDictionary dictionary, DocumentTable documents)
      : segment(std::move(bytes)), terms(std::move(dictionary)), table(std::move(documents)) {}

  // In a child process, to close the file of an index would take away the lock of its parent.
  ~Files() {
    if (!process.IsThisOne()) static_cast<void>(index_file.release());
  }
  Files(const Files&) = delete;
  Files& operator=(const Files&) = delete;

  // Reads the record of `key` through gdbm, which is opened when it is needed first. That a record
  // is not where it should be makes the whole file doubtful, so that its checksum is compared then.
  //   Returns  kDamaged if there is none, or the file is another one.
  Result<Bytes> Fetch(std::string_view key) const;

  // The same for an index file of class Kestan: posting records in order of codes, and, for no
  // record, nothing.
  Result<std::string> FetchOrdered(std::string_view term) const;
  Result<std::string> FetchField(DocumentField field, std::string_view name) const;
  Result<std::string> FetchProperty(std::string_view key) const;

  std::shared_ptr<const FileBytes> segment;
  FileSummary summary;  // that the index file should have; not of one of class Kestan
  TermDictionary terms;
  DocumentTable table;
  bool is_plain = false;     // an index file of class Kestan, without other files
  mutable std::mutex mutex;  // of what follows, which one thread at a time may use
  mutable std::unique_ptr<IndexFile> index_file;
  mutable OwningProcess process;  // that opened it: others would move its place in the file
};

Result<Bytes> Segment::Files::Fetch(std::string_view key) const {
  if (key.size() > std::numeric_limits<std::int32_t>::max()) {
    return StatusOfIndexFile(StoreError::kItemNotFound, 0, segment->path());
  }
  const std::lock_guard<std::mutex> lock(mutex);
  if (!process.IsThisOne()) {
    static_cast<void>(index_file.release());
    process = OwningProcess();
  }
  if (index_file == nullptr) {
    const Status status = VerifyFile(segment->path(), summary);
    if (!status.ok()) return status;
    auto opened = std::make_unique<IndexFile>();
    const StoreError error = opened->Open(segment->path().c_str());
    if (error != StoreError::kNone) return StatusOfIndexFile(error, errno, segment->path());
    index_file = std::move(opened);
  }
  Database& store = index_file->store();
  DBDatumPtr value;
  const int error = store.Get(&value, DBDatum(key.data(), static_cast<std::uint32_t>(key.size())));
  if (error != 0) return StatusOfIndexFile(StoreError{error}, errno, segment->path());
  auto copy = std::make_shared<std::string>(value.ptr->data, value.ptr->size);
  value.Free();
  store.Flush();  // so that nothing piles up in its cache
  return Bytes(std::shared_ptr<const std::string>(std::move(copy)));
}

Result<std::string> Segment::Files::FetchOrdered(std::string_view term) const {
  if (!process.IsThisOne()) return WasForked(segment->path());
  const std::lock_guard<std::mutex> lock(mutex);
  std::string record = OrderedRecord(index_file->FindWord(term));
  index_file->store().Flush();
  const StoreError error = index_file->FileError();
  if (error != StoreError::kNone) return StatusOfIndexFile(error, errno, segment->path());
  return record;
}

Result<std::string> Segment::Files::FetchField(DocumentField field, std::string_view name) const {
  if (!process.IsThisOne()) return WasForked(segment->path());
  const std::lock_guard<std::mutex> lock(mutex);
  DBDatumPtr value =
      index_file->FindSideRecord(kSideRecords[static_cast<std::size_t>(field)], name);
  std::string text;
  if (value.ptr != nullptr) text.assign(value.ptr->data, value.ptr->size);
  value.Free();
  index_file->store().Flush();
  const StoreError error = index_file->FileError();
  if (error != StoreError::kNone) return StatusOfIndexFile(error, errno, segment->path());
  return text;
}

Result<std::string> Segment::Files::FetchProperty(std::string_view key) const {
  if (!process.IsThisOne()) return WasForked(segment->path());
  const std::lock_guard<std::mutex> lock(mutex);
  std::string value = kestan::search::PropertyOf(*index_file, key);
  index_file->store().Flush();
  const StoreError error = index_file->FileError();
  if (error != StoreError::kNone) return StatusOfIndexFile(error, errno, segment->path());
  return value;
}

// ---- Opening ----

Result<std::shared_ptr<const Segment::Files>> Segment::OpenFiles(const std::string& folder,
                                                                 const SegmentInfo& info) {
  const std::string beside = folder + "/";
  auto bytes = FileBytes::Open(beside + SegmentFile(info), info.segment.bytes);
  if (!bytes.ok()) return bytes.status();
  const auto terms_bytes = FileBytes::Open(beside + TermsFile(info), info.terms.bytes);
  if (!terms_bytes.ok()) return terms_bytes.status();
  const auto table_bytes = FileBytes::Open(beside + TableFile(info), info.table.bytes);
  if (!table_bytes.ok()) return table_bytes.status();
  TermDictionary::WillOpen(**terms_bytes);
  DocumentTable::WillOpen(**table_bytes);
  Result<TermDictionary> terms = TermDictionary::Open(*terms_bytes);
  if (!terms.ok()) return terms.status();
  Result<DocumentTable> table = DocumentTable::Open(*table_bytes);
  if (!table.ok()) return table.status();
  if (table->size() != info.documents) {
    return Contradiction("documents", beside + TableFile(info));
  }
  if (terms->segment_checksum() != info.segment.checksum) {
    return OfAnotherSegment(beside + TermsFile(info));
  }
  if (table->segment_checksum() != info.segment.checksum) {
    return OfAnotherSegment(beside + TableFile(info));
  }
  auto files = std::make_shared<Files>(std::move(*bytes), std::move(*terms), std::move(*table));
  files->summary = info.segment;
  return std::shared_ptr<const Files>(std::move(files));
}

Result<Edits> Segment::ReadEdits(const std::string& folder, const SegmentInfo& info) {
  if (info.edit_number == 0) return Edits(info.documents);
  const std::string path = folder + "/" + EditsFile(info);
  const Result<std::string> bytes = ReadWholeFile(path, info.edits.bytes);
  if (!bytes.ok()) return bytes.status();
  if (!(FileSummary{bytes->size(), ChecksumOf(*bytes)} == info.edits)) {
    return Contradiction("bytes", path);
  }
  Result<Edits> edits = Edits::Decode(*bytes, info.documents);
  if (!edits.ok()) return Status(edits.status().code(), edits.status().message(), path);
  if (edits->removed_count() != info.removed) return Contradiction("removed documents", path);
  return edits;
}

bool Segment::HasFilesOf(const SegmentInfo& info) const {
  return info_.number == info.number && info_.segment == info.segment &&
         info_.terms == info.terms && info_.table == info.table;
}

Result<std::shared_ptr<const Segment>> Segment::Open(const std::string& folder,
                                                     const SegmentInfo& info, bool with_positions,
                                                     const Segment* previous) {
  std::shared_ptr<Segment> segment(new Segment());
  if (previous != nullptr && previous->HasFilesOf(info)) {
    segment->files_ = previous->files_;
  } else {
    auto files = OpenFiles(folder, info);
    if (!files.ok()) return files.status();
    segment->files_ = std::move(*files);
  }
  Result<Edits> edits = ReadEdits(folder, info);
  if (!edits.ok()) return edits.status();
  segment->edits_ = std::move(*edits);
  segment->info_ = info;
  segment->folder_ = folder;
  segment->with_positions_ = with_positions;
  segment->CountLiving();
  Status status = segment->status();  // numbers of words may have been read
  if (!status.ok()) return status;
  return std::shared_ptr<const Segment>(std::move(segment));
}

Result<std::shared_ptr<const Segment>> Segment::OpenIndexFile(const std::string& path) {
  Result<PlainIndex> plain = ReadPlainIndex(path);
  if (!plain.ok()) return plain.status();
  Result<TermDictionary> terms =
      TermDictionary::Open(FileBytes::InMemory(std::move(plain->terms), path));
  if (!terms.ok()) return terms.status();
  Result<DocumentTable> table =
      DocumentTable::Open(FileBytes::InMemory(std::move(plain->table), path));
  if (!table.ok()) return table.status();
  auto files =
      std::make_shared<Files>(FileBytes::InMemory("", path), std::move(*terms), std::move(*table));
  files->is_plain = true;
  files->index_file = std::move(plain->file);
  std::shared_ptr<Segment> segment(new Segment());
  segment->info_.number = 1;
  segment->info_.documents = static_cast<std::uint32_t>(files->table.size());
  segment->info_.removed = static_cast<std::uint32_t>(plain->edits.removed_count());
  segment->info_.segment.bytes = static_cast<std::uint64_t>(files->index_file->store().FileBytes());
  segment->files_ = std::move(files);
  segment->edits_ = std::move(plain->edits);
  segment->with_positions_ = plain->with_positions;
  segment->CountLiving();
  return std::shared_ptr<const Segment>(std::move(segment));
}

Status Segment::Verify() const {
  if (files_->is_plain) return {};
  Status status = VerifyFile(path(), info_.segment);
  if (status.ok()) status = VerifyFile(folder_ + "/" + TermsFile(info_), info_.terms);
  if (status.ok()) status = VerifyFile(folder_ + "/" + TableFile(info_), info_.table);
  return status;
}

const std::string& Segment::path() const { return files_->segment->path(); }

void Segment::CountLiving() {
  living_documents_ = size() - edits_.removed_count();
  living_words_ = table().words();
  if (edits_.removed_count() == 0) return;
  for (std::size_t code = 1; code <= size(); ++code) {
    if (IsRemoved(static_cast<Code>(code))) {
      living_words_ -= table().WordsOf(static_cast<Code>(code));
    }
  }
}

const DocumentTable& Segment::table() const { return files_->table; }
const TermDictionary& Segment::terms() const { return files_->terms; }

// ---- Documents ----

std::string_view Segment::NameOf(Code code) const {
  const DocumentEdit* const edit = edits_.EditOf(code);
  return edit != nullptr && edit->name ? std::string_view(*edit->name) : table().NameOf(code);
}

std::uint32_t Segment::AddedOf(Code code) const {
  const DocumentEdit* const edit = edits_.EditOf(code);
  return edit != nullptr && edit->name ? edit->renamed : table().AddedOf(code);
}

std::optional<Code> Segment::FindDocument(std::string_view name) const {
  const std::optional<Code> renamed = edits_.FindRenamed(name);
  if (renamed) return renamed;
  const std::optional<Code> code = table().Find(name);
  if (!code || IsRemoved(*code)) return std::nullopt;
  const DocumentEdit* const edit = edits_.EditOf(*code);
  const bool has_other_name = edit != nullptr && edit->name;
  return has_other_name ? std::nullopt : code;
}

// The record of a renamed document keeps the key of its old name.
Result<std::string> Segment::FieldOf(Code code, DocumentField field) const {
  const auto index = static_cast<std::size_t>(field);
  const DocumentEdit* const edit = edits_.EditOf(code);
  if (edit != nullptr && edit->fields[index]) return *edit->fields[index];
  const DocumentEntry entry = table().EntryOf(code);
  if (entry.name.empty() && !table().status().ok()) return table().status();
  if (files_->is_plain) return files_->FetchField(field, entry.name);
  if (entry.fields[index].offset == 0) return std::string();
  const std::string key = std::string(kFieldFamilies[index]).append(entry.name);
  const Result<Bytes> record = ReadRecord(key, entry.fields[index]);
  if (!record.ok()) return record.status();
  return std::string(record->view());
}

void Segment::WillReadField(Code code, DocumentField field) const {
  const RecordPlace place = table().EntryOf(code).fields[static_cast<std::size_t>(field)];
  const std::uint64_t bytes = std::uint64_t{place.key_bytes} + place.value_bytes;
  if (place.offset != 0) files_->segment->WillRead(place.offset, bytes);
}

Result<std::string> Segment::PropertyOf(std::string_view key) const {
  return files_->is_plain ? files_->FetchProperty(key) : std::string();
}

// ---- Words ----

std::optional<Bytes> Segment::RecordAt(std::string_view key, const RecordPlace& place) const {
  if (place.offset == 0 || place.key_bytes != key.size()) return std::nullopt;
  const std::uint64_t size = std::uint64_t{place.key_bytes} + place.value_bytes;
  Bytes record = files_->segment->Read(place.offset, size);
  if (record.view().size() != size || record.view().substr(0, key.size()) != key) {
    return std::nullopt;
  }
  record.RemovePrefix(key.size());
  return record;
}

Result<Bytes> Segment::ReadRecord(std::string_view key, const RecordPlace& place) const {
  std::optional<Bytes> record = RecordAt(key, place);
  if (record) return std::move(*record);
  return files_->Fetch(key);
}

Result<TermPostings> Segment::PostingsOf(const TermEntry& entry) const {
  TermPostings postings;
  postings.documents = entry.documents;
  if (files_->is_plain) {
    Result<std::string> record = files_->FetchOrdered(entry.term);
    if (!record.ok()) return record.status();
    postings.record = Bytes(std::make_shared<const std::string>(std::move(*record)));
    return postings;
  }
  if (CanBeRecord(entry.place.value_bytes, entry.documents, with_positions_)) {
    std::optional<Bytes> record = RecordAt(entry.term, entry.place);
    if (record) {
      postings.record = std::move(*record);
      return postings;
    }
  }
  Result<Bytes> record = files_->Fetch(entry.term);
  if (!record.ok()) return record.status();
  if (!CanBeRecord(record->view().size(), entry.documents, with_positions_)) {
    return Status(StatusCode::kDamaged, "the term dictionary contradicts the segment",
                  files_->segment->path());
  }
  postings.record = std::move(*record);
  return postings;
}

Result<TermPostings> Segment::FindTerm(std::string_view term) const {
  const auto entry = terms().Find(term);
  if (!entry.ok()) return entry.status();
  return *entry ? PostingsOf(**entry) : TermPostings();
}

}  // namespace kestan::search
