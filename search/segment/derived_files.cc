// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/segment/derived_files.h"

#include <kestan/index_file.h>
#include <kestan/postings.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "search/files/descriptor.h"
#include "search/files/file_bytes.h"
#include "search/segment/document_table.h"
#include "search/segment/plain_index.h"
#include "search/segment/record_keys.h"
#include "search/segment/term_dictionary.h"

namespace kestan::search {
namespace {

constexpr std::size_t kRecordsBetweenFlushes = 1000;
constexpr std::uint64_t kNearBytes = 64 << 10;   // how far from its predecessor a record may lie
constexpr std::uint64_t kWindowBytes = 1 << 20;  // read at a time
constexpr std::size_t kDocumentRecordBytes = 4 + 4;

// Finds where records lie, most of which follow each other.
class PlaceFinder {
 public:
  PlaceFinder(std::shared_ptr<const FileBytes> file, bool is_loose)
      : file_(std::move(file)), is_loose_(is_loose) {}

  // Passes over a record that lies here.
  void Skip(std::size_t bytes) { expected_ += bytes; }

  RecordPlace Find(std::string_view key, std::string_view value) {
    if (is_loose_) return {};
    std::string record(key);
    record.append(value);
    std::uint64_t offset = FindFrom(expected_, kNearBytes, record);
    if (offset == 0) offset = FindFrom(1, file_->size(), record);
    if (offset == 0) return {};
    expected_ = offset + record.size();
    return {offset, static_cast<std::uint32_t>(key.size()),
            static_cast<std::uint32_t>(value.size())};
  }

 private:
  // Returns the first offset that is less than `bytes` from `begin` on; 0 for none.
  std::uint64_t FindFrom(std::uint64_t begin, std::uint64_t bytes, const std::string& record) {
    const std::uint64_t end = begin + bytes;
    const Bytes here = file_->Read(begin, record.size());
    if (here.view() == record) return begin;
    for (; begin < end && begin < file_->size(); begin += kWindowBytes) {
      const std::uint64_t count = std::min(kWindowBytes, end - begin);
      const Bytes window = file_->Read(begin, count + record.size() - 1);
      const std::size_t at = window.view().find(record);
      if (at != std::string_view::npos) return begin + at;
    }
    return 0;
  }

  std::shared_ptr<const FileBytes> file_;
  const bool is_loose_;
  std::uint64_t expected_ = 1;
};

class Deriver {
 public:
  // Borrows `known`, which is null unless the file is loose.
  Deriver(std::string path, const std::vector<KnownDocument>* known)
      : path_(std::move(path)), known_(known) {}

  Result<DerivedFiles> Derive() {
    errno = 0;
    StoreError error = file_.Open(path_.c_str());
    if (error != StoreError::kNone) return StatusOfIndexFile(error, errno, path_);
    const auto flags = file_.OptionFlags();
    if (!flags) return Damaged("it is no index file");
    files_.with_positions = KeepsPositions(*flags);
    const auto size = static_cast<std::uint64_t>(file_.store().FileBytes());
    auto bytes = FileBytes::Open(path_, size);
    if (!bytes.ok()) return bytes.status();
    const Result<FileSummary> summary = SummaryOf(path_);
    if (!summary.ok()) return summary.status();
    files_.segment = *summary;
    PlaceFinder finder(std::move(*bytes), is_loose());
    Status status = ReadDocuments();
    if (status.ok()) status = ReadTerms();
    if (status.ok()) status = WriteTable(&finder);
    if (status.ok()) status = WriteTerms(&finder);
    if (!status.ok()) return status;
    error = file_.FileError();
    if (error != StoreError::kNone) return StatusOfIndexFile(error, errno, path_);
    return std::move(files_);
  }

 private:
  struct StoredDocument {
    std::string name;
    std::uint32_t added = 0;
    std::uint64_t folded = 0;   // positions of words without capitals, or such words
    std::uint32_t highest = 0;  // position
  };

  Status Damaged(const std::string& what) const { return {StatusCode::kDamaged, what, path_}; }

  Status ReadDocuments() {
    const DocumentCounts counts = file_.CountDocuments();
    if (counts.documents != counts.highest_code && !is_loose()) {
      return Damaged("it is no segment of an index");
    }
    files_.documents = counts.highest_code;
    files_.edits = Edits(counts.highest_code);
    documents_.resize(std::size_t{counts.highest_code} + 1);
    for (std::size_t i = 1; i < documents_.size(); ++i) {
      const auto code = static_cast<Code>(i);
      StoredDocument& document = documents_[i];
      document.name = file_.NameOf(code);
      const bool is_removed = is_loose() && file_.IsRemoved(code);
      if (is_removed || document.name.empty() || file_.CodeOf(document.name) != code) {
        if (!is_loose()) return Damaged("a document is missing in it");
        LeaveOut(code);
        continue;
      }
      document.added = file_.TimestampOf(document.name);
      if (!names_.insert(document.name).second) return Damaged("two documents have one name");
      if (is_loose()) codes_.emplace(document.name, code);
      if (i % kRecordsBetweenFlushes == 0) file_.store().Flush();
    }
    return {};
  }

  // A code without a document gets a name that no document can have, for names have no NUL.
  void LeaveOut(Code code) {
    documents_[code].name = std::string(1, '\0') + std::to_string(code);
    files_.edits.Remove(code);
  }

  bool is_loose() const { return known_ != nullptr; }

  KnownDocument KnownOf(Code code) const {
    return is_loose() && code < known_->size() ? (*known_)[code] : KnownDocument();
  }

  Status ReadTerms() {
    std::size_t records = 0;
    DBDatumPtr key;
    DBDatumPtr value;
    for (int error = file_.store().First(&key, &value); key.ptr != nullptr;
         error = file_.store().Next(&key, &value)) {
      if (error != 0) return StatusOfIndexFile(StoreError{error}, errno, path_);
      const std::string_view bytes(value.ptr->data, value.ptr->size);
      const std::string_view term(key.ptr->data, key.ptr->size);
      if (IsTerm(term, bytes)) {
        const auto documents = CountPostings(bytes, IsFolded(term));
        if (!documents) return Damaged("a posting record is damaged");
        terms_.emplace_back(term, *documents);
      }
      if (++records % kRecordsBetweenFlushes == 0) {
        value.Free();
        file_.store().Flush();
      }
    }
    value.Free();
    file_.store().Flush();
    std::sort(terms_.begin(), terms_.end(), ByTerm);
    if (file_.store().WalkError() == 0) return {};
    return StatusOfIndexFile(StoreError{file_.store().WalkError()}, errno, path_);
  }

  // A word has no record of its own where its key is that of another one.
  bool IsTerm(std::string_view key, std::string_view value) const {
    if (key.size() == kFamilyBytes || !HasFamilyMark(key)) return true;
    if (IsSingleKey(key)) return false;
    const std::string_view name = key.substr(kFamilyBytes);
    switch (key[0]) {
      case 'c':
        return name.size() != sizeof(Code) || !IsCode(NumberAt<std::uint16_t>(name.data()));
      case 'd':
        return names_.count(name) == 0;
      case 't':
      case 's':
      case 'u':
        return names_.count(name) == 0 || !IsField(key[0], name, value);
      default:
        return true;
    }
  }

  // Returns whether the record is a text of the document `name`, and not of a word like "t-shirt".
  bool IsField(char family, std::string_view name, std::string_view value) const {
    const auto code = codes_.find(name);
    const KnownDocument known = code != codes_.end() ? KnownOf(code->second) : KnownDocument();
    if (!known.is_known) return !ReadPostings(value, [](const PostingCursor&) {});
    for (std::size_t i = 0; i < kDocumentFields; ++i) {
      if (kFieldFamilies[i].front() == family) return known.fields[i];
    }
    return false;
  }

  bool IsCode(Code code) const { return code != 0 && code < documents_.size(); }

  // Calls `visit` with each posting.
  //   Returns  false for what no posting record is.
  template <typename Visit>
  bool ReadPostings(std::string_view record, const Visit& visit) const {
    Code last = 0;
    std::size_t read_bytes = 0;
    for (PostingCursor cursor(record, files_.with_positions); cursor.Next();) {
      if (cursor.code() <= last || !IsCode(cursor.code()) || !IsWhole(cursor)) return false;
      last = cursor.code();
      read_bytes += cursor.bytes().size();
      visit(cursor);
    }
    return last != 0 && read_bytes == record.size();
  }

  bool IsWhole(const PostingCursor& cursor) const {
    if (!files_.with_positions) return true;
    const EncodedPositions positions = cursor.positions();
    if (positions.size() == 0) return false;
    if (NumberAt<std::uint16_t>(cursor.bytes().data() + sizeof(Code)) != positions.size()) {
      return false;
    }
    return std::find(positions.begin(), positions.end(), 0) == positions.end();
  }

  // Counts documents, and the words of each.
  std::optional<std::uint32_t> CountPostings(std::string_view record, bool is_folded) {
    std::uint32_t count = 0;
    const bool is_sound = ReadPostings(record, [&](const PostingCursor& cursor) {
      ++count;
      StoredDocument& document = documents_[cursor.code()];
      const EncodedPositions positions = cursor.positions();
      if (is_folded) document.folded += std::max<std::size_t>(positions.size(), 1);
      for (const Position position : positions) {
        document.highest = std::max<std::uint32_t>(document.highest, position);
      }
    });
    return is_sound ? std::optional<std::uint32_t>(count) : std::nullopt;
  }

  // Documents lie in order of their codes: name, document record, texts.
  Status WriteTable(PlaceFinder* finder) {
    DocumentTableWriter writer;
    writer.CreateInMemory(&files_.table);
    writer.SetSegment(files_.segment.checksum);
    for (std::size_t i = 1; i < documents_.size(); ++i) {
      const StoredDocument& document = documents_[i];
      DocumentEntry entry;
      entry.name = document.name;
      entry.added = document.added;
      entry.words =
          static_cast<std::uint32_t>(std::max<std::uint64_t>(document.folded, document.highest));
      entry.words = std::max(entry.words, KnownOf(static_cast<Code>(i)).words);
      const std::string code = {static_cast<char>(i & 0xff), static_cast<char>(i >> 8)};
      finder->Find("c-" + code, document.name);
      finder->Skip(kFamilyBytes + document.name.size() + kDocumentRecordBytes);
      const bool has_fields = !files_.edits.IsRemoved(static_cast<Code>(i));
      for (std::size_t field = 0; has_fields && field < kDocumentFields; ++field) {
        entry.fields[field] = PlaceOfField(field, document.name, finder);
      }
      writer.Add(entry);
      if (i % kRecordsBetweenFlushes == 0) file_.store().Flush();
    }
    const Result<FileSummary> summary = writer.Finish();
    return summary.ok() ? Status() : summary.status();
  }

  RecordPlace PlaceOfField(std::size_t field, const std::string& name, PlaceFinder* finder) {
    const std::string key = std::string(kFieldFamilies[field]).append(name);
    const DBDatumPtr value = ValueOf(key);
    if (value.ptr == nullptr) return {};
    const std::string_view bytes(value.ptr->data, value.ptr->size);
    const bool is_term = std::binary_search(terms_.begin(), terms_.end(),
                                            std::make_pair(key, std::uint32_t{0}), ByTerm);
    if (is_term) return {};
    return is_loose() ? PlaceOfNone(key, bytes) : finder->Find(key, bytes);
  }

  // Returns a place where no record is, so that whoever looks there asks gdbm for it.
  static RecordPlace PlaceOfNone(std::string_view key, std::string_view value) {
    return {1, static_cast<std::uint32_t>(key.size()), static_cast<std::uint32_t>(value.size())};
  }

  static bool ByTerm(const std::pair<std::string, std::uint32_t>& left,
                     const std::pair<std::string, std::uint32_t>& right) {
    return left.first < right.first;
  }

  DBDatumPtr ValueOf(std::string_view key) {
    DBDatumPtr value;
    file_.store().Get(&value, DBDatum(key.data(), static_cast<std::uint32_t>(key.size())));
    return value;
  }

  Status WriteTerms(PlaceFinder* finder) {
    TermDictionaryWriter writer;
    writer.CreateInMemory(&files_.terms);
    writer.SetSegment(files_.segment.checksum);
    std::size_t records = 0;
    for (const auto& [term, documents] : terms_) {
      const DBDatumPtr value = ValueOf(term);
      if (value.ptr == nullptr) return Damaged("a word is not found in it");
      writer.Add({term, documents, finder->Find(term, {value.ptr->data, value.ptr->size})});
      if (++records % kRecordsBetweenFlushes == 0) file_.store().Flush();
    }
    const Result<FileSummary> summary = writer.Finish();
    return summary.ok() ? Status() : Damaged("a word is in it twice");
  }

  const std::string path_;
  const std::vector<KnownDocument>* const known_;
  IndexFile file_;
  DerivedFiles files_;
  std::vector<StoredDocument> documents_;  // by code
  std::set<std::string, std::less<>> names_;
  std::map<std::string, Code, std::less<>> codes_;            // of a loose file
  std::vector<std::pair<std::string, std::uint32_t>> terms_;  // with the number of documents
};

}  // namespace

Result<DerivedFiles> DeriveFiles(const std::string& path) {
  return Deriver(path, nullptr).Derive();
}

Result<DerivedFiles> DeriveLooseFiles(const std::string& path,
                                      const std::vector<KnownDocument>& known) {
  return Deriver(path, &known).Derive();
}

}  // namespace kestan::search
