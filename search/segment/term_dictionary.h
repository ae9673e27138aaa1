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
#include "search/files/output_file.h"

namespace kestan::search {

struct TermEntry {
  std::string_view term;
  std::uint32_t documents = 0;  // that hold the term, removed ones among them
  RecordPlace place;
};

// Writes a dictionary. Terms are front-coded in blocks; an index of the blocks follows them. Each
// block and the index carry a checksum of their own, so that no look-up believes a changed byte.
class TermDictionaryWriter {
 public:
  Status Create(const std::string& path);

  // Adds a term, which must come after all before it in order of bytes.
  void Add(const TermEntry& entry);

  Result<FileSummary> Finish();

 private:
  void FinishBlock();

  struct Block {
    std::string first_term;
    std::uint64_t offset = 0;
    std::uint32_t bytes = 0;
    std::uint32_t checksum = 0;
  };

  OutputFile file_;
  std::vector<Block> blocks_;
  std::string block_;
  std::string last_term_;
  std::size_t terms_in_block_ = 0;
  std::uint64_t terms_ = 0;
};

// Reads a dictionary. Any number of threads may use it at once.
class TermDictionary {
 public:
  // Opens the dictionary in `file`. Reads its index alone.
  //   Returns  kDamaged or kVersion.
  static Result<TermDictionary> Open(std::shared_ptr<const FileBytes> file);

  std::uint64_t size() const { return terms_; }

  // Finds `term`, byte for byte. The entry's term is a view of `term`.
  //   Returns  nothing if the dictionary lacks it; kDamaged.
  Result<std::optional<TermEntry>> Find(std::string_view term) const;

  // Calls `visit` with each entry from the first term that is not before `from` on, in order,
  // until it returns false. The term is lent for the call.
  Status ForEach(std::string_view from, const std::function<bool(const TermEntry&)>& visit) const;

  // Goes through all entries, for merging.
  class Cursor {
   public:
    explicit Cursor(const TermDictionary& dictionary);

    // Goes to the next entry; at first to the first one.
    //   Returns  whether there is one; kDamaged.
    Result<bool> Next();

    // Lent until Next().
    const TermEntry& entry() const { return entry_; }

   private:
    const TermDictionary* dictionary_;
    std::size_t next_block_ = 0;
    Bytes block_;
    std::string_view rest_;
    std::string term_;
    TermEntry entry_;
  };

 private:
  TermDictionary() = default;

  Result<Bytes> Block(std::size_t index) const;
  std::size_t BlockOf(std::string_view term) const;

  std::shared_ptr<const FileBytes> file_;
  Bytes index_;
  std::uint64_t terms_ = 0;
  std::size_t blocks_ = 0;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SEGMENT_TERM_DICTIONARY_H_
