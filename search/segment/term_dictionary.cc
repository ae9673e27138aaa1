// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/segment/term_dictionary.h"

#include <algorithm>
#include <limits>

#include "search/files/file_header.h"

namespace kestan::search {
namespace {

constexpr FileKind kKind = {"KestTerm", 2, "a term dictionary"};

// A look-up reads and checks one block: the smaller, the faster, but the larger the index.
constexpr std::uint32_t kTermsInBlock = 64;
constexpr std::size_t kBlockBytes = 2048;  // a block that has so many is full

// Hardly any dictionary has fewer bytes for each byte of its index.
constexpr std::uint64_t kBytesPerIndexByte = 12;

constexpr std::size_t kOffsetBytes = 8;
constexpr std::size_t kChecksumBytes = 8;
constexpr std::size_t kIndexEntryBytes = kOffsetBytes + kChecksumBytes + 4;

// Where the index begins, how many terms and blocks there are, how many bytes separators take, and
// the checksum of the index file.
constexpr std::size_t kTrailerNumberBytes = 8 + 8 + 4 + 4 + 8;
constexpr std::size_t kTrailerBytes = kTrailerNumberBytes + kChecksumBytes;

std::size_t SharedBytes(std::string_view left, std::string_view right) {
  const std::size_t most = std::min(left.size(), right.size());
  std::size_t count = 0;
  while (count < most && left[count] == right[count]) ++count;
  return count;
}

}  // namespace

// ---- Writing ----

Status TermDictionaryWriter::Create(const std::string& path) {
  Status status = file_.Create(path);
  if (status.ok()) file_.Write(FileHeader(kKind));
  return status;
}

void TermDictionaryWriter::CreateInMemory(std::string* bytes) {
  file_.CreateInMemory(bytes);
  file_.Write(FileHeader(kKind));
}

void TermDictionaryWriter::Add(const TermEntry& entry) {
  if (terms_ > 0 && entry.term <= last_term_ && status_.ok()) {
    status_ = {StatusCode::kInvalidArgument, "the terms are not in order"};
  }
  if (!status_.ok()) return;
  if (terms_in_block_ == 0) StartBlock(entry.term);
  const std::size_t shared = terms_in_block_ == 0 ? 0 : SharedBytes(last_term_, entry.term);
  const std::string_view suffix = entry.term.substr(shared);
  AppendVarint(shared, &block_);
  AppendVarint(suffix.size(), &block_);
  block_.append(suffix);
  AppendPlace(entry);
  last_term_.assign(entry.term);
  ++terms_;
  ++terms_in_block_;
  if (terms_in_block_ == kTermsInBlock || block_.size() >= kBlockBytes) FinishBlock();
}

// Records lie in order of their terms, so most begin where the last one ends.
void TermDictionaryWriter::AppendPlace(const TermEntry& entry) {
  const RecordPlace& place = entry.place;
  const bool is_next = place.offset != 0 && place.offset == expected_offset_;
  AppendVarint(std::uint64_t{entry.documents} * 2 + (is_next ? 0 : 1), &block_);
  AppendVarint(place.value_bytes, &block_);
  if (!is_next) AppendVarint(ZigZag(place.offset - expected_offset_), &block_);
  if (place.offset != 0) expected_offset_ = place.offset + entry.term.size() + place.value_bytes;
}

// Of the first term, the index has only as much as tells it from the term before.
void TermDictionaryWriter::StartBlock(std::string_view term) {
  if (separators_.size() + term.size() > std::numeric_limits<std::uint32_t>::max()) {
    status_ = {StatusCode::kSystem, "the index of the terms is too large"};
  }
  AppendNumber(file_.size(), &blocks_);
  AppendNumber(std::uint64_t{0}, &blocks_);  // the checksum, when it is known
  AppendNumber(static_cast<std::uint32_t>(separators_.size()), &blocks_);
  if (terms_ > 0) separators_.append(term.substr(0, SharedBytes(last_term_, term) + 1));
  ++block_count_;
  expected_offset_ = 0;
}

void TermDictionaryWriter::FinishBlock() {
  if (terms_in_block_ == 0) return;
  std::string checksum;
  AppendChecksumOf(block_, &checksum);
  blocks_.replace(blocks_.size() - kIndexEntryBytes + kOffsetBytes, kChecksumBytes, checksum);
  file_.Write(block_);
  block_.clear();
  terms_in_block_ = 0;
}

std::string TermDictionaryWriter::IndexBytes() const {
  std::string bytes = blocks_ + separators_;
  AppendNumber(file_.size(), &bytes);
  AppendNumber(terms_, &bytes);
  AppendNumber(block_count_, &bytes);
  AppendNumber(static_cast<std::uint32_t>(separators_.size()), &bytes);
  AppendNumber(segment_checksum_, &bytes);
  AppendChecksumOf(bytes, &bytes);
  return bytes;
}

Result<FileSummary> TermDictionaryWriter::Finish(Syncing syncing) {
  FinishBlock();
  if (!status_.ok()) {
    file_.Discard();
    return status_;
  }
  file_.Write(IndexBytes());
  return file_.Finish(syncing);
}

// ---- One block ----

bool TermBlockReader::Next(EncodedTerm* entry) {
  std::uint64_t suffix_bytes = 0;
  std::uint64_t documents = 0;
  std::uint32_t value_bytes = 0;
  if (!reader_.Varint(&entry->shared) || entry->shared > term_bytes_) return false;
  if (!reader_.Varint(&suffix_bytes) || !reader_.Bytes(suffix_bytes, &entry->suffix)) return false;
  if (!reader_.Varint(&documents) || !reader_.Varint(&value_bytes)) return false;
  term_bytes_ = entry->shared + entry->suffix.size();
  entry->documents = static_cast<std::uint32_t>(documents >> 1);
  constexpr std::uint32_t kMost = std::numeric_limits<std::uint32_t>::max();
  if (documents >> 1 > kMost || term_bytes_ > kMost) return false;
  return NextPlace((documents & 1) == 0, value_bytes, &entry->place);
}

bool TermBlockReader::NextPlace(bool is_next, std::uint32_t value_bytes, RecordPlace* place) {
  std::uint64_t difference = 0;
  if (!is_next && !reader_.Varint(&difference)) return false;
  place->offset = expected_offset_ + UnZigZag(difference);
  place->value_bytes = value_bytes;
  place->key_bytes = place->offset == 0 ? 0 : static_cast<std::uint32_t>(term_bytes_);
  if (place->offset == 0) return value_bytes == 0;
  expected_offset_ = place->offset + term_bytes_ + value_bytes;
  return true;
}

// ---- Reading ----

Status TermDictionary::Damaged() const {
  return {StatusCode::kDamaged, "the term dictionary is damaged", file_->path()};
}

void TermDictionary::WillOpen(const FileBytes& file) {
  const std::uint64_t end_bytes = kTrailerBytes + file.size() / kBytesPerIndexByte;
  if (end_bytes + kFileHeaderBytes < file.size()) file.WillRead(0, kFileHeaderBytes);
  file.WillRead(file.size() - std::min(end_bytes, file.size()), end_bytes);
}

Result<TermDictionary> TermDictionary::Open(std::shared_ptr<const FileBytes> file) {
  TermDictionary dictionary;
  dictionary.file_ = std::move(file);
  const Status status = dictionary.ReadIndex();
  if (!status.ok()) return status;
  return dictionary;
}

Status TermDictionary::ReadIndex() {
  const Bytes header = file_->Read(0, kFileHeaderBytes);
  Status status = CheckFileHeader(header.view(), kKind, file_->path());
  if (!status.ok()) return status;
  if (file_->size() < kFileHeaderBytes + kTrailerBytes) return Damaged();
  const std::uint64_t trailer_offset = file_->size() - kTrailerBytes;
  const Bytes trailer = file_->Read(trailer_offset, kTrailerBytes);
  if (trailer.view().size() != kTrailerBytes) return Damaged();
  const char* const numbers = trailer.view().data();
  index_offset_ = NumberAt<std::uint64_t>(numbers);
  terms_ = NumberAt<std::uint64_t>(numbers + 8);
  const std::uint64_t blocks = NumberAt<std::uint32_t>(numbers + 16);
  const std::uint64_t separator_bytes = NumberAt<std::uint32_t>(numbers + 20);
  segment_checksum_ = NumberAt<std::uint64_t>(numbers + 24);
  const std::uint64_t index_bytes = blocks * kIndexEntryBytes + separator_bytes;
  if (index_offset_ < kFileHeaderBytes || index_offset_ > trailer_offset ||
      trailer_offset - index_offset_ != index_bytes) {
    return Damaged();
  }
  index_ = file_->Read(index_offset_, index_bytes + kTrailerBytes);
  if (index_.view().size() != index_bytes + kTrailerBytes) return Damaged();
  const auto entry_bytes = static_cast<std::size_t>(blocks * kIndexEntryBytes);
  separators_ = index_.view().substr(entry_bytes, static_cast<std::size_t>(separator_bytes));
  blocks_ = static_cast<std::size_t>(blocks);
  return IndexIsSound() ? Status() : Damaged();
}

// Returns whether the checksum at the end is that of all before it.
bool TermDictionary::IndexIsSound() const {
  const std::string_view checked = index_.view().substr(0, index_.view().size() - kChecksumBytes);
  return IsChecksumOf(checked, checked.data() + checked.size());
}

std::uint64_t TermDictionary::OffsetOf(std::size_t block) const {
  if (block == blocks_) return index_offset_;
  return NumberAt<std::uint64_t>(index_.view().data() + block * kIndexEntryBytes);
}

std::string_view TermDictionary::SeparatorOf(std::size_t block) const {
  const char* const start =
      index_.view().data() + block * kIndexEntryBytes + kOffsetBytes + kChecksumBytes;
  const std::size_t first = NumberAt<std::uint32_t>(start);
  const std::size_t end =
      block + 1 == blocks_ ? separators_.size() : NumberAt<std::uint32_t>(start + kIndexEntryBytes);
  return first <= end && end <= separators_.size() ? separators_.substr(first, end - first) : "";
}

// Returns the last block whose separator is not after `term`; 0 where there is no block.
std::size_t TermDictionary::BlockOf(std::string_view term) const {
  std::size_t first = 0;
  std::size_t end = blocks_;
  while (end - first > 1) {
    const std::size_t middle = first + (end - first) / 2;
    if (SeparatorOf(middle) <= term) {
      first = middle;
    } else {
      end = middle;
    }
  }
  return first;
}

Result<Bytes> TermDictionary::Block(std::size_t block) const {
  const std::uint64_t offset = OffsetOf(block);
  const std::uint64_t end = OffsetOf(block + 1);
  if (offset > end || end > index_offset_) return Damaged();
  Bytes bytes = file_->Read(offset, end - offset);
  const char* const entry = index_.view().data() + block * kIndexEntryBytes;
  if (bytes.view().size() != end - offset || !IsChecksumOf(bytes.view(), entry + kOffsetBytes)) {
    return Damaged();
  }
  return bytes;
}

// Puts no term together: `matched` is how many bytes the term and the last entry have in common,
// and entries that share more with their predecessor, which is before the term, are before it too.
Result<std::optional<TermEntry>> TermDictionary::Find(std::string_view term) const {
  if (blocks_ == 0) return std::optional<TermEntry>();
  const Result<Bytes> block = Block(BlockOf(term));
  if (!block.ok()) return block.status();
  TermBlockReader reader(block->view());
  EncodedTerm entry;
  std::size_t matched = 0;
  while (!reader.AtEnd()) {
    if (!reader.Next(&entry)) return Damaged();
    if (entry.shared > matched) continue;
    if (entry.shared < matched) break;
    const std::string_view rest = term.substr(matched);
    const std::size_t more = SharedBytes(entry.suffix, rest);
    if (more == rest.size() && more == entry.suffix.size()) {
      return std::optional<TermEntry>({term, entry.documents, entry.place});
    }
    if (entry.suffix > rest) break;
    matched += more;
  }
  return std::optional<TermEntry>();
}

Status TermDictionary::ForEach(std::string_view from,
                               const std::function<bool(const TermEntry&)>& visit) const {
  Cursor cursor(*this);
  cursor.next_block_ = BlockOf(from);
  for (;;) {
    const Result<bool> has_entry = cursor.Next();
    if (!has_entry.ok()) return has_entry.status();
    if (!*has_entry) return {};
    if (cursor.entry().term >= from && !visit(cursor.entry())) return {};
  }
}

Status TermDictionary::Cursor::OpenBlock() {
  Result<Bytes> block = dictionary_->Block(next_block_);
  if (!block.ok()) return block.status();
  ++next_block_;
  block_ = std::move(*block);
  reader_ = TermBlockReader(block_.view());
  return {};
}

Result<bool> TermDictionary::Cursor::Next() {
  while (reader_.AtEnd()) {
    if (next_block_ >= dictionary_->blocks_) return false;
    const Status status = OpenBlock();
    if (!status.ok()) return status;
  }
  EncodedTerm encoded;
  if (!reader_.Next(&encoded) || encoded.shared > term_.size()) return dictionary_->Damaged();
  term_.resize(encoded.shared);
  term_.insert(term_.end(), encoded.suffix.begin(), encoded.suffix.end());
  entry_ = {{term_.data(), term_.size()}, encoded.documents, encoded.place};
  return true;
}

}  // namespace kestan::search
