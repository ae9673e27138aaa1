// SPDX-License-Identifier: GPL-3.0-or-later
// The terms of a segment in order of their bytes, and where their posting records lie.
// docs/index-folder.md has every byte.
#ifndef KESTAN_SEARCH_SEGMENT_TERM_DICTIONARY_H_
#define KESTAN_SEARCH_SEGMENT_TERM_DICTIONARY_H_

#include <kestan/index_builder.h>
#include <kestan/search/status.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "search/files/file_bytes.h"
#include "search/files/numbers.h"
#include "search/files/output_file.h"

namespace kestan::search {

struct TermEntry {
  std::string_view term;
  std::uint32_t documents = 0;  // that hold the term, removed ones among them
  RecordPlace place;            // whose key is the term; {} for none
};

// Writes a dictionary. Terms are front-coded in blocks; an index of the blocks follows them. Each
// block and the index carry a checksum of their own, so that no look-up believes a changed byte.
class TermDictionaryWriter {
 public:
  Status Create(const std::string& path);

  // The same, with the bytes appended to `*bytes`, which must outlive the writer.
  void CreateInMemory(std::string* bytes);

  // Adds a term, which must come after all before it in order of bytes.
  void Add(const TermEntry& entry);

  // Says which index file these terms belong to, by its checksum; 0 without it.
  void SetSegment(std::uint64_t checksum) { segment_checksum_ = checksum; }

  //   Returns  the first error, and removes the file then; kInvalidArgument for terms out of order.
  Result<FileSummary> Finish(Syncing syncing = Syncing::kNow);

 private:
  void StartBlock(std::string_view term);
  void FinishBlock();
  void AppendPlace(const TermEntry& entry);
  std::string IndexBytes() const;

  OutputFile file_;
  Status status_;
  std::string blocks_;      // what the index has of each block
  std::string separators_;  // the least terms of all blocks, side by side
  std::string block_;       // the one that is being filled
  std::string last_term_;
  std::uint64_t expected_offset_ = 0;  // where the next record lies if none is left out
  std::uint32_t terms_in_block_ = 0;
  std::uint32_t block_count_ = 0;
  std::uint64_t terms_ = 0;
  std::uint64_t segment_checksum_ = 0;
};

// An entry of a block, before its term is put together.
struct EncodedTerm {
  std::size_t shared = 0;   // how many bytes the term has in common with the one before
  std::string_view suffix;  // the rest of it
  std::uint32_t documents = 0;
  RecordPlace place;
};

// Goes through the entries of a block.
class TermBlockReader {
 public:
  TermBlockReader() = default;

  // Borrows the bytes of the block, without its checksum.
  explicit TermBlockReader(std::string_view block) : reader_(block) {}

  bool AtEnd() const { return reader_.rest() == 0; }

  //   Returns  false for what is no entry.
  bool Next(EncodedTerm* entry);

 private:
  bool NextPlace(bool is_next, std::uint32_t value_bytes, RecordPlace* place);

  ByteReader reader_;
  std::size_t term_bytes_ = 0;  // of the last term
  std::uint64_t expected_offset_ = 0;
};

// Reads a dictionary. Any number of threads may use it at once.
class TermDictionary {
 public:
  // Announces what Open() will read of `file`.
  static void WillOpen(const FileBytes& file);

  // Opens the dictionary in `file`. Reads its index alone.
  //   Returns  kDamaged or kVersion.
  static Result<TermDictionary> Open(std::shared_ptr<const FileBytes> file);

  std::uint64_t size() const { return terms_; }

  // The checksum of the index file that the terms belong to; 0 if that was not said.
  std::uint64_t segment_checksum() const { return segment_checksum_; }

  // Finds `term`, byte for byte. The entry's term is a view of `term`.
  //   Returns  nothing if the dictionary lacks it; kDamaged.
  Result<std::optional<TermEntry>> Find(std::string_view term) const;

  // Calls `visit` with each entry from the first term that is not before `from` on, in order,
  // until it returns false. The term is lent for the call.
  Status ForEach(std::string_view from, const std::function<bool(const TermEntry&)>& visit) const;

  // Goes through all entries, for merging.
  class Cursor {
   public:
    // Borrows `dictionary`.
    explicit Cursor(const TermDictionary& dictionary) : dictionary_(&dictionary) {}
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;
    Cursor(Cursor&&) = default;
    Cursor& operator=(Cursor&&) = default;
    ~Cursor() = default;

    // Goes to the next entry; at first to the first one.
    //   Returns  whether there is one; kDamaged.
    Result<bool> Next();

    // Lent until Next().
    const TermEntry& entry() const { return entry_; }

   private:
    friend class TermDictionary;

    // Goes to the start of the next block.
    Status OpenBlock();

    const TermDictionary* dictionary_;
    std::size_t next_block_ = 0;
    Bytes block_;
    TermBlockReader reader_;
    std::vector<char> term_;  // no string, whose bytes would move with it
    TermEntry entry_;
  };

 private:
  TermDictionary() = default;

  Status Damaged() const;
  Status ReadIndex();
  bool IndexIsSound() const;
  std::uint64_t OffsetOf(std::size_t block) const;
  std::string_view SeparatorOf(std::size_t block) const;
  Result<Bytes> Block(std::size_t block) const;
  std::size_t BlockOf(std::string_view term) const;

  std::shared_ptr<const FileBytes> file_;
  Bytes index_;
  std::string_view separators_;  // of index_
  std::uint64_t terms_ = 0;
  std::uint64_t segment_checksum_ = 0;
  std::uint64_t index_offset_ = 0;
  std::size_t blocks_ = 0;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SEGMENT_TERM_DICTIONARY_H_
