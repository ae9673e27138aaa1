// SPDX-License-Identifier: GPL-3.0-or-later
// The documents of a segment: all that ranking and listing need of them, without opening the
// segment itself. docs/index-folder.md has every byte.
#ifndef KESTAN_SEARCH_SEGMENT_DOCUMENT_TABLE_H_
#define KESTAN_SEARCH_SEGMENT_DOCUMENT_TABLE_H_

#include <kestan/index_builder.h>
#include <kestan/postings.h>
#include <kestan/search/index_writer.h>
#include <kestan/search/status.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "search/files/file_bytes.h"
#include "search/files/numbers.h"
#include "search/files/output_file.h"

namespace kestan::search {

constexpr std::size_t kDocumentFields = 3;  // see DocumentField

// A document of a segment, as it was when the segment was written.
struct DocumentEntry {
  std::string_view name;
  std::uint32_t words = 0;  // how many words it has, as positions count them
  std::uint32_t added = 0;  // in seconds since 1970
  // By DocumentField; {} for none. The key of each is two bytes longer than the name.
  std::array<RecordPlace, kDocumentFields> fields;
};

class DocumentTableWriter {
 public:
  Status Create(const std::string& path);

  // The same, with the bytes appended to `*bytes`, which must outlive the writer.
  void CreateInMemory(std::string* bytes);

  // Adds the document of the next code; the first has code 1. Copies the name.
  void Add(const DocumentEntry& entry);

  // Says which index file these documents belong to, by its checksum; 0 without it.
  void SetSegment(std::uint64_t checksum) { segment_checksum_ = checksum; }

  //   Returns  the first error, and removes the file then; kInvalidArgument for more than kMaxCode
  //            documents.
  Result<FileSummary> Finish(Syncing syncing = Syncing::kNow);

 private:
  std::string_view NameOf(std::uint16_t index) const;
  std::string CheckedByParts() const;
  std::string ByName() const;

  OutputFile file_;
  Status status_;
  std::uint64_t all_words_ = 0;
  std::uint64_t segment_checksum_ = 0;
  std::string words_;                  // of each document
  std::string records_;                // of each document, side by side
  std::vector<std::uint32_t> starts_;  // of the records
};

// Reads a document table. Any number of threads may use it at once.
//
// A search needs little of it, so that it is checked in parts of 4 KB when something in them is
// read first. What stands in a part that is damaged is as if it were not there, and status() says
// so from then on.
class DocumentTable {
 public:
  // Announces what Open() will read of `file`.
  static void WillOpen(const FileBytes& file);

  // Opens the document table in `file`.
  //   Returns  kDamaged or kVersion.
  static Result<DocumentTable> Open(std::shared_ptr<const FileBytes> file);

  // Returns kDamaged if anything that was read so far is damaged. Whoever has asked for names or
  // numbers of words and believes them must ask here too.
  Status status() const;

  // Checks all that was not read so far.
  //   Returns  as status() does.
  Status Verify() const;

  // How many documents the segment was written with; their codes are 1 to size().
  std::size_t size() const { return size_; }

  // The checksum of the index file that the documents belong to; 0 if that was not said.
  std::uint64_t segment_checksum() const { return segment_checksum_; }

  // Returns the sum of the words of all documents.
  std::uint64_t words() const { return all_words_; }

  // Returns how many words the document has; 0 if that is damaged, and where there is no document
  // `code`.
  std::uint32_t WordsOf(Code code) const;

  // Calls `visit` with the index of each of `codes`, which ascend, and with the words of it.
  template <typename Visit>
  void VisitWords(const std::vector<Code>& codes, Visit visit) const;

  // Returns "" if it is damaged, and where there is no document `code`. A view that ends with the
  // table.
  std::string_view NameOf(Code code) const;
  std::uint32_t AddedOf(Code code) const { return EntryOf(code).added; }
  DocumentEntry EntryOf(Code code) const;

  // Announces that the name of the document will be read, in two steps: all first ones belong
  // before all second ones. Names that are announced together are fetched from the disk at once.
  void WillReadStart(Code code) const;
  void WillReadRecord(Code code) const;

  // Finds a document by its name, by halving.
  std::optional<Code> Find(std::string_view name) const;

 private:
  enum class State : std::uint8_t { kUnread, kAnnounced, kValid, kDamaged };

  // What was checked so far, of a table that may be moved.
  struct Checks {
    explicit Checks(std::size_t parts) : states(parts) {}
    std::vector<std::atomic<State>> states;  // by part
    std::atomic<bool> damaged = false;
  };

  DocumentTable() = default;
  Status Read();
  bool SizesAgree(std::uint64_t record_bytes);
  bool IsSound(std::size_t offset, std::size_t bytes) const;
  bool PartIsSound(std::size_t part) const {
    return checks_->states[part].load(std::memory_order_relaxed) == State::kValid ||
           CheckPart(part);
  }
  bool CheckPart(std::size_t part) const;
  void WillRead(std::size_t offset, std::size_t bytes) const;
  std::uint64_t OffsetOfPart(std::size_t part) const;
  void WillReadWords(const std::vector<Code>& codes) const;
  std::size_t EndOfSoundWords(Code code) const;
  bool Damaged() const;
  std::string_view ExtentOf(Code code) const;
  std::size_t OffsetOf(std::string_view bytes) const {
    return static_cast<std::size_t>(bytes.data() - parts_.data());
  }
  ByteReader RecordOf(Code code) const;
  Code CodeAt(std::size_t index) const;

  std::shared_ptr<const FileBytes> file_;
  Bytes bytes_;  // the whole file
  std::shared_ptr<Checks> checks_;
  std::size_t size_ = 0;
  std::uint64_t all_words_ = 0;
  std::uint64_t segment_checksum_ = 0;
  const char* part_checksums_ = nullptr;
  // All that is checked by parts: numbers of words, starts of records, codes by name, records.
  std::string_view parts_;
};

template <typename Visit>
void DocumentTable::VisitWords(const std::vector<Code>& codes, Visit visit) const {
  WillReadWords(codes);
  std::size_t sound_end = 0;  // codes below it, from the last one on, are sound
  for (std::size_t i = 0; i < codes.size(); ++i) {
    const std::size_t code = codes[i];
    if (code >= sound_end) sound_end = EndOfSoundWords(codes[i]);
    const bool is_sound = code < sound_end;
    visit(i, is_sound ? NumberAt<std::uint32_t>(parts_.data() + (code - 1) * 4) : 0);
  }
}

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SEGMENT_DOCUMENT_TABLE_H_
