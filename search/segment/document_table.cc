// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/segment/document_table.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "search/files/file_header.h"

namespace kestan::search {
namespace {

constexpr FileKind kKind = {"KestDocs", 3, "a document table"};

// How many words, documents and bytes of records there are, and the checksum of the index file.
constexpr std::size_t kWordsOffset = kFileHeaderBytes;
constexpr std::size_t kDocumentsOffset = kWordsOffset + 8;
constexpr std::size_t kRecordBytesOffset = kDocumentsOffset + 4;
constexpr std::size_t kSegmentOffset = kRecordBytesOffset + 4;
constexpr std::size_t kFixedBytes = kSegmentOffset + 8;

constexpr std::size_t kChecksumBytes = 8;
constexpr std::size_t kPartBytes = 4096;
constexpr std::size_t kWordsBytes = 4;
constexpr std::size_t kStartBytes = 4;
constexpr std::size_t kCodeBytes = 2;
constexpr std::size_t kFamilyBytes = 2;  // what the keys of fields have before the name

constexpr std::size_t kWordsInPart = kPartBytes / kWordsBytes;

// Where the starts, the codes and the records begin in the parts of a table of `documents`.
std::size_t StartsAt(std::size_t documents) { return documents * kWordsBytes; }
std::size_t CodesAt(std::size_t documents) {
  return StartsAt(documents) + (documents + 1) * kStartBytes;
}
std::size_t RecordsAt(std::size_t documents) { return CodesAt(documents) + documents * kCodeBytes; }

std::size_t PartsOf(std::size_t bytes) { return (bytes + kPartBytes - 1) / kPartBytes; }

std::string ChecksumsOfParts(std::string_view bytes) {
  std::string checksums;
  for (std::size_t offset = 0; offset < bytes.size(); offset += kPartBytes) {
    AppendChecksumOf(bytes.substr(offset, kPartBytes), &checksums);
  }
  return checksums;
}

void AppendRecord(const DocumentEntry& entry, std::string* records) {
  AppendVarint(entry.name.size(), records);
  records->append(entry.name);
  AppendNumber(entry.added, records);
  unsigned present = 0;
  for (std::size_t i = 0; i < kDocumentFields; ++i) {
    if (entry.fields[i].offset != 0) present |= 1U << i;
  }
  AppendVarint(present, records);
  std::uint64_t expected_offset = 0;
  for (const RecordPlace& place : entry.fields) {
    if (place.offset == 0) continue;
    AppendVarint(ZigZag(place.offset - expected_offset), records);
    AppendVarint(place.value_bytes, records);
    expected_offset = place.offset + place.key_bytes + place.value_bytes;
  }
}

bool ReadFields(ByteReader* reader, DocumentEntry* entry) {
  unsigned present = 0;
  if (!reader->Varint(&present) || present >> kDocumentFields != 0) return false;
  std::uint64_t expected_offset = 0;
  for (std::size_t i = 0; i < kDocumentFields; ++i) {
    if ((present >> i & 1) == 0) continue;
    RecordPlace& place = entry->fields[i];
    std::uint64_t difference = 0;
    if (!reader->Varint(&difference) || !reader->Varint(&place.value_bytes)) return false;
    place.offset = expected_offset + UnZigZag(difference);
    place.key_bytes = static_cast<std::uint32_t>(kFamilyBytes + entry->name.size());
    expected_offset = place.offset + place.key_bytes + place.value_bytes;
  }
  return true;
}

bool ReadName(ByteReader* reader, std::string_view* name) {
  std::uint64_t bytes = 0;
  return reader->Varint(&bytes) && reader->Bytes(bytes, name);
}

bool ReadRecord(ByteReader reader, DocumentEntry* entry) {
  std::string_view added;
  if (!ReadName(&reader, &entry->name) || !reader.Bytes(sizeof entry->added, &added)) return false;
  entry->added = NumberAt<std::uint32_t>(added.data());
  return ReadFields(&reader, entry) && reader.rest() == 0;
}

}  // namespace

// ---- Writing ----

Status DocumentTableWriter::Create(const std::string& path) { return file_.Create(path); }

void DocumentTableWriter::CreateInMemory(std::string* bytes) { file_.CreateInMemory(bytes); }

void DocumentTableWriter::Add(const DocumentEntry& entry) {
  const bool fits =
      starts_.size() < kMaxCode && records_.size() <= std::numeric_limits<std::uint32_t>::max();
  if (!fits) status_ = {StatusCode::kInvalidArgument, "too many documents for one segment"};
  if (!status_.ok()) return;
  all_words_ += entry.words;
  AppendNumber(entry.words, &words_);
  starts_.push_back(static_cast<std::uint32_t>(records_.size()));
  AppendRecord(entry, &records_);
}

std::string_view DocumentTableWriter::NameOf(std::uint16_t index) const {
  ByteReader reader(std::string_view(records_).substr(starts_[index]));
  std::string_view name;
  ReadName(&reader, &name);
  return name;
}

// Returns the codes in order of their names.
std::string DocumentTableWriter::ByName() const {
  std::vector<std::pair<std::string_view, std::uint16_t>> names;
  names.reserve(starts_.size());
  for (std::size_t i = 0; i < starts_.size(); ++i) {
    const auto index = static_cast<std::uint16_t>(i);
    names.emplace_back(NameOf(index), index);
  }
  std::sort(names.begin(), names.end());
  std::string codes;
  for (const auto& [name, index] : names) {
    AppendNumber(static_cast<std::uint16_t>(index + 1), &codes);
  }
  return codes;
}

std::string DocumentTableWriter::CheckedByParts() const {
  std::string bytes = words_;
  for (const std::uint32_t start : starts_) AppendNumber(start, &bytes);
  AppendNumber(static_cast<std::uint32_t>(records_.size()), &bytes);
  return bytes + ByName() + records_;
}

Result<FileSummary> DocumentTableWriter::Finish(Syncing syncing) {
  if (records_.size() > std::numeric_limits<std::uint32_t>::max()) {
    status_ = {StatusCode::kInvalidArgument, "the names are too long for one segment"};
  }
  if (!status_.ok()) {
    file_.Discard();
    return status_;
  }
  const std::string parts = CheckedByParts();
  std::string bytes = FileHeader(kKind);
  AppendNumber(all_words_, &bytes);
  AppendNumber(static_cast<std::uint32_t>(starts_.size()), &bytes);
  AppendNumber(static_cast<std::uint32_t>(records_.size()), &bytes);
  AppendNumber(segment_checksum_, &bytes);
  bytes += ChecksumsOfParts(parts);
  AppendChecksumOf(bytes, &bytes);
  file_.Write(bytes);
  file_.Write(parts);
  return file_.Finish(syncing);
}

// ---- Opening ----

void DocumentTable::WillOpen(const FileBytes& file) {
  const std::uint64_t parts = file.size() / kPartBytes + 1;
  file.WillRead(0, kFixedBytes + (parts + 1) * kChecksumBytes);
}

Result<DocumentTable> DocumentTable::Open(std::shared_ptr<const FileBytes> file) {
  DocumentTable table;
  table.file_ = std::move(file);
  const Status status = table.Read();
  if (!status.ok()) return status;
  return table;
}

Status DocumentTable::Read() {
  Status damaged(StatusCode::kDamaged, "the document table is damaged", file_->path());
  bytes_ = file_->ReadSparsely();
  const std::string_view bytes = bytes_.view();
  Status status = CheckFileHeader(bytes, kKind, file_->path());
  if (!status.ok()) return status;
  if (bytes.size() < kFixedBytes || bytes.size() != file_->size()) return damaged;
  all_words_ = NumberAt<std::uint64_t>(bytes.data() + kWordsOffset);
  size_ = NumberAt<std::uint32_t>(bytes.data() + kDocumentsOffset);
  segment_checksum_ = NumberAt<std::uint64_t>(bytes.data() + kSegmentOffset);
  if (!SizesAgree(NumberAt<std::uint32_t>(bytes.data() + kRecordBytesOffset))) return damaged;
  const auto checked = static_cast<std::size_t>(parts_.data() - bytes.data()) - kChecksumBytes;
  return IsChecksumOf(bytes.substr(0, checked), bytes.data() + checked) ? Status() : damaged;
}

// Finds out where the sections are.
//   Returns  whether the file has the size that they need.
bool DocumentTable::SizesAgree(std::uint64_t record_bytes) {
  const std::string_view bytes = bytes_.view();
  if (size_ > kMaxCode || record_bytes > bytes.size()) return false;
  const std::size_t parts_bytes = RecordsAt(size_) + static_cast<std::size_t>(record_bytes);
  const std::size_t parts = PartsOf(parts_bytes);
  const std::size_t parts_offset = kFixedBytes + (parts + 1) * kChecksumBytes;
  if (parts_offset > bytes.size() || bytes.size() - parts_offset != parts_bytes) return false;
  part_checksums_ = bytes.data() + kFixedBytes;
  parts_ = bytes.substr(parts_offset);
  checks_ = std::make_shared<Checks>(parts);
  return true;
}

// ---- Checking by parts ----

bool DocumentTable::Damaged() const {
  checks_->damaged.store(true, std::memory_order_relaxed);
  return false;
}

Status DocumentTable::status() const {
  if (!checks_->damaged.load(std::memory_order_relaxed)) return {};
  return {StatusCode::kDamaged, "the document table is damaged", file_->path()};
}

Status DocumentTable::Verify() const {
  for (std::size_t part = 0; part < checks_->states.size(); ++part) PartIsSound(part);
  for (std::size_t code = 1; code <= size_; ++code) EntryOf(static_cast<Code>(code));
  return status();
}

bool DocumentTable::CheckPart(std::size_t part) const {
  std::atomic<State>& state = checks_->states[part];
  State found = state.load(std::memory_order_relaxed);
  if (found == State::kUnread) file_->BeginRead(OffsetOfPart(part), kPartBytes);
  if (found != State::kValid && found != State::kDamaged) {
    const char* const expected = part_checksums_ + part * kChecksumBytes;
    found = IsChecksumOf(parts_.substr(part * kPartBytes, kPartBytes), expected) ? State::kValid
                                                                                 : State::kDamaged;
    state.store(found, std::memory_order_relaxed);
  }
  return found == State::kValid || Damaged();
}

std::uint64_t DocumentTable::OffsetOfPart(std::size_t part) const {
  return file_->size() - parts_.size() + part * kPartBytes;
}

// Announces those of these bytes of parts_ whose parts were not read or announced before.
void DocumentTable::WillRead(std::size_t offset, std::size_t bytes) const {
  const std::size_t first = offset / kPartBytes;
  const std::size_t end = PartsOf(offset + bytes);
  std::size_t announced = 0;
  for (std::size_t part = first; part < end; ++part) {
    State expected = State::kUnread;
    if (checks_->states[part].compare_exchange_strong(expected, State::kAnnounced)) ++announced;
  }
  if (announced > 0) file_->WillRead(OffsetOfPart(first), (end - first) * kPartBytes);
}

// Returns whether the parts that hold these bytes of parts_ are sound; there must be such bytes.
bool DocumentTable::IsSound(std::size_t offset, std::size_t bytes) const {
  const std::size_t last = (offset + bytes - 1) / kPartBytes;
  for (std::size_t part = offset / kPartBytes; part <= last; ++part) {
    if (!PartIsSound(part)) return false;
  }
  return true;
}

// ---- Documents ----

// Returns the first code after `code` whose words are in another part; 0 if those of `code` are not
// sound, or not there.
std::size_t DocumentTable::EndOfSoundWords(Code code) const {
  if (code == 0 || code > size_) return 0;
  const std::size_t part = (std::size_t{code} - 1) / kWordsInPart;
  return PartIsSound(part) ? std::min((part + 1) * kWordsInPart, size_) + 1 : 0;
}

void DocumentTable::WillReadWords(const std::vector<Code>& codes) const {
  if (codes.empty() || codes.front() == 0 || codes.back() > size_) return;
  const std::size_t first = std::size_t{codes.front()} - 1;
  WillRead(first * kWordsBytes, (codes.back() - first) * kWordsBytes);
}

std::uint32_t DocumentTable::WordsOf(Code code) const {
  if (EndOfSoundWords(code) == 0) return 0;
  return NumberAt<std::uint32_t>(parts_.data() + (std::size_t{code} - 1) * kWordsBytes);
}

void DocumentTable::WillReadStart(Code code) const {
  if (code == 0 || code > size_) return;
  WillRead(StartsAt(size_) + (std::size_t{code} - 1) * kStartBytes, 2 * kStartBytes);
}

void DocumentTable::WillReadRecord(Code code) const {
  const std::string_view record = ExtentOf(code);
  if (!record.empty()) WillRead(OffsetOf(record), record.size());
}

// Returns where the record of the document is in parts_; nothing if that is damaged.
std::string_view DocumentTable::ExtentOf(Code code) const {
  if (code == 0 || code > size_) return {};
  const std::size_t at = StartsAt(size_) + (std::size_t{code} - 1) * kStartBytes;
  if (!IsSound(at, 2 * kStartBytes)) return {};
  const std::size_t records = RecordsAt(size_);
  const std::size_t start = NumberAt<std::uint32_t>(parts_.data() + at);
  const std::size_t end = NumberAt<std::uint32_t>(parts_.data() + at + kStartBytes);
  if (start >= end || end > parts_.size() - records) return {};
  return parts_.substr(records + start, end - start);
}

// Returns the bytes of the record of the document, none if it is damaged.
ByteReader DocumentTable::RecordOf(Code code) const {
  const std::string_view record = ExtentOf(code);
  if (record.empty() || !IsSound(OffsetOf(record), record.size())) return {};
  return ByteReader(record);
}

std::string_view DocumentTable::NameOf(Code code) const {
  ByteReader reader = RecordOf(code);
  std::string_view name;
  if (!ReadName(&reader, &name)) Damaged();
  return name;
}

DocumentEntry DocumentTable::EntryOf(Code code) const {
  DocumentEntry entry;
  if (!ReadRecord(RecordOf(code), &entry)) {
    Damaged();
    entry = {};
  }
  entry.words = WordsOf(code);
  return entry;
}

// Returns the code of the document whose name is at `index` in order of bytes, 0 if it is damaged.
Code DocumentTable::CodeAt(std::size_t index) const {
  const std::size_t at = CodesAt(size_) + index * kCodeBytes;
  if (!IsSound(at, kCodeBytes)) return 0;
  const auto code = NumberAt<std::uint16_t>(parts_.data() + at);
  if (code == 0 || code > size_) Damaged();
  return code <= size_ ? code : Code{0};
}

std::optional<Code> DocumentTable::Find(std::string_view name) const {
  std::size_t first = 0;
  std::size_t end = size_;
  while (first < end) {
    const std::size_t middle = first + (end - first) / 2;
    const Code code = CodeAt(middle);
    if (code == 0) return std::nullopt;
    const int order = NameOf(code).compare(name);
    if (order == 0) return code;
    if (order < 0) {
      first = middle + 1;
    } else {
      end = middle;
    }
  }
  return std::nullopt;
}

}  // namespace kestan::search
