// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/segment/plain_index.h"

#include <kestan/index_builder.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <utility>
#include <vector>

#include "search/files/descriptor.h"
#include "search/segment/document_table.h"
#include "search/segment/term_dictionary.h"

namespace kestan::search {
namespace {

constexpr std::size_t kDocumentsBetweenFlushes = 1000;
constexpr std::string_view kOptionFlagsProperty = "option-flags";
constexpr std::string_view kWordListProperty = "wordlist:";

// Returns whether a list may have `word`. The bytes of postings make none.
bool IsListed(std::string_view word) {
  const auto is_control = [](char byte) { return static_cast<unsigned char>(byte) <= ' '; };
  return !word.empty() && std::none_of(word.begin(), word.end(), is_control);
}

// Returns whether a record of the document with the empty name has this key too: "d-".
bool HasKeyOfEmptyName(std::string_view word) {
  constexpr std::string_view kFamilies = "cdgstuw";
  return word.size() == 2 && word[1] == '-' && kFamilies.find(word[0]) != std::string_view::npos;
}

class PlainIndexReader {
 public:
  explicit PlainIndexReader(std::string path) : path_(std::move(path)) {}

  Result<PlainIndex> Read() {
    index_.file = std::make_unique<IndexFile>();
    errno = 0;
    const StoreError error = index_.file->Open(path_.c_str());
    if (error != StoreError::kNone) return StatusOfIndexFile(error, errno, path_);
    const auto flags = index_.file->OptionFlags();
    if (!flags) return Status(StatusCode::kDamaged, "it is no index file", path_);
    index_.with_positions = KeepsPositions(*flags);
    Status status = ReadDocuments();
    if (status.ok()) status = ReadTerms();
    if (status.ok()) status = WriteTerms();
    if (status.ok()) status = WriteTable();
    if (!status.ok()) return status;
    return std::move(index_);
  }

 private:
  struct StoredDocument {
    bool lives = false;
    std::string name;
    std::uint32_t added = 0;
    std::uint64_t folded = 0;   // positions of folded words; without positions, such words
    std::uint32_t highest = 0;  // position

    std::uint32_t words() const {
      return static_cast<std::uint32_t>(
          std::min<std::uint64_t>(std::max<std::uint64_t>(folded, highest), UINT32_MAX));
    }
  };

  struct StoredTerm {
    std::string term;
    std::uint32_t documents = 0;
  };

  Status Damaged(const std::string& what) const { return {StatusCode::kDamaged, what, path_}; }

  Status FileStatus() const {
    const StoreError error = index_.file->FileError();
    return error == StoreError::kNone ? Status() : StatusOfIndexFile(error, errno, path_);
  }

  Status ReadDocuments() {
    const DocumentCounts counts = index_.file->CountDocuments();
    documents_.resize(std::size_t{counts.highest_code} + 1);
    index_.edits = Edits(counts.highest_code);
    std::size_t found = 0;
    for (std::size_t i = 1; i < documents_.size(); ++i) {
      const auto code = static_cast<Code>(i);
      if (index_.file->IsRemoved(code) || !ReadDocument(code, &found)) index_.edits.Remove(code);
      if (i % kDocumentsBetweenFlushes == 0) index_.file->store().Flush();
    }
    index_.file->store().Flush();
    Status status = FileStatus();
    if (status.ok() && found != counts.documents) status = Damaged("documents are missing in it");
    return status;
  }

  // Reads the document `code`, and counts it in `*found` if its name is in use.
  //   Returns  whether it lives.
  bool ReadDocument(Code code, std::size_t* found) {
    StoredDocument& document = documents_[code];
    const std::string_view name = index_.file->NameOf(code);
    if (name.data() == nullptr) return false;
    document.name = name;
    const Code owner = index_.file->CodeOf(document.name);
    if (owner != 0) ++*found;
    if (owner != code) return false;
    document.added = index_.file->TimestampOf(document.name);
    document.lives = true;
    return true;
  }

  Status ReadTerms() {
    Status status;
    const StoreError error =
        index_.file->ForEachWord([&](std::string_view word, const WordPostings& postings) {
          status = ReadTerm(word, postings);
          return status.ok();
        });
    if (!status.ok()) return status;
    if (error != StoreError::kNone) return StatusOfIndexFile(error, errno, path_);
    return FileStatus();
  }

  // Returns whether a posting is of a document that there can be.
  bool IsSound(Code code, const EncodedPositions& positions) const {
    const bool has_positions = positions.size() > 0;
    return code != 0 && code < documents_.size() && has_positions == index_.with_positions;
  }

  bool AreSound(const WordPostings& postings) const {
    for (WordPostings::Cursor cursor(postings); cursor.Next();) {
      if (!IsSound(cursor.code(), cursor.positions())) return false;
    }
    return true;
  }

  Status ReadTerm(std::string_view word, const WordPostings& postings) {
    if (HasKeyOfEmptyName(word) && !AreSound(postings)) return {};
    const bool is_folded = IsFolded(word);
    std::uint32_t documents = 0;
    for (WordPostings::Cursor cursor(postings); cursor.Next(); ++documents) {
      const Code code = cursor.code();
      const EncodedPositions positions = cursor.positions();
      if (!IsSound(code, positions)) return Damaged("a posting record is damaged");
      StoredDocument& document = documents_[code];
      if (is_folded) document.folded += std::max<std::size_t>(positions.size(), 1);
      for (const Position position : positions) {
        document.highest = std::max<std::uint32_t>(document.highest, position);
      }
    }
    if (documents > 0) terms_.push_back({std::string(word), documents});
    return {};
  }

  Status WriteTerms() {
    std::sort(terms_.begin(), terms_.end(), [](const StoredTerm& left, const StoredTerm& right) {
      return left.term < right.term;
    });
    TermDictionaryWriter writer;
    writer.CreateInMemory(&index_.terms);
    for (const StoredTerm& term : terms_) writer.Add({term.term, term.documents, {}});
    terms_.clear();
    const Result<FileSummary> summary = writer.Finish();
    if (summary.ok()) return {};
    return Damaged("a word is in it twice");  // the one thing that can be wrong
  }

  // Codes without a document have names that no document can have, for names end at a NUL.
  Status WriteTable() {
    DocumentTableWriter writer;
    writer.CreateInMemory(&index_.table);
    for (std::size_t i = 1; i < documents_.size(); ++i) {
      StoredDocument& document = documents_[i];
      if (!document.lives) document.name = std::string(1, '\0') + std::to_string(i);
      DocumentEntry entry;
      entry.name = document.name;
      entry.words = document.lives ? document.words() : 0;
      entry.added = document.added;
      writer.Add(entry);
    }
    const Result<FileSummary> summary = writer.Finish();
    return summary.ok() ? Status() : summary.status();
  }

  const std::string path_;
  PlainIndex index_;
  std::vector<StoredDocument> documents_;  // by code
  std::vector<StoredTerm> terms_;
};

}  // namespace

Status StatusOfIndexFile(StoreError error, int error_number, const std::string& file) {
  switch (error) {
    case StoreError::kFileOpen:
      return SystemError(error_number, file);
    case StoreError::kCannotBeReader:
      return {StatusCode::kBusy, "another process is writing it", file};
    case StoreError::kByteSwapped:
    case StoreError::kBadFileOffset:
      return {StatusCode::kVersion, ErrorString(error), file};
    case StoreError::kOutOfMemory:
      return {StatusCode::kOutOfMemory, ErrorString(error), file};
    default:
      return {StatusCode::kDamaged, ErrorString(error), file};
  }
}

// Folding sets this bit in each byte, which makes capitals lower case.
bool IsFolded(std::string_view word) {
  constexpr unsigned char kFoldedBit = 0x20;
  return std::all_of(word.begin(), word.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & kFoldedBit) != 0;
  });
}

std::string PropertyOf(IndexFile& file, std::string_view key) {
  if (key == kOptionFlagsProperty) {
    const std::uint32_t flags = file.OptionFlags().value_or(0) & ~kFlagNoPositions;
    return flags == 0 ? "" : std::to_string(flags);
  }
  if (key.substr(0, kWordListProperty.size()) != kWordListProperty) return "";
  std::string words;
  bool is_list = true;  // the posting record of a word such as "w-boson" is none
  file.ForEachListedWord(key.substr(kWordListProperty.size()), [&](std::string_view word) {
    is_list = is_list && IsListed(word);
    words.append(word) += '\n';
  });
  return is_list ? words : "";
}

Result<PlainIndex> ReadPlainIndex(const std::string& path) { return PlainIndexReader(path).Read(); }

std::string OrderedRecord(const WordPostings& postings) {
  std::string record;
  for (WordPostings::Cursor cursor(postings); cursor.Next();) {
    if (postings.with_positions()) {
      AppendPosting(cursor.code(), cursor.positions(), &record);
    } else {
      AppendPosting(cursor.code(), &record);
    }
  }
  return record;
}

}  // namespace kestan::search
