// SPDX-License-Identifier: GPL-3.0-or-later
// What an open index says of its documents and words, as values.
#ifndef KESTAN_QUERY_INDEX_READER_H_
#define KESTAN_QUERY_INDEX_READER_H_

#include <kestan/format/posting.h>
#include <kestan/query/frequency_range.h>
#include <kestan/query/word_postings.h>
#include <kestan/storage/database.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/storage/export.h>
#include <kestan/storage/store_error.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

class Kestan;

namespace kestan {

class NameTable;

// How many documents an index has, and what its codes are used for. Where a damaged index
// contradicts itself, no number goes below 0.
struct DocumentCounts {
  std::size_t documents = 0;       // without removed ones
  Code highest_code = 0;           // handed out so far; 0 in an index that never had a document
  std::size_t reusable_codes = 0;  // of removed documents, which the next ones get
  std::size_t removed_codes = 0;   // of documents removed since the last shrink
  std::size_t free_codes = 0;      // how many documents can still be added
  bool had_documents = false;      // it has, or once had, a document
};

// The free-form texts that an index keeps for a name.
enum class SideRecord : std::uint8_t { kTitle, kSummary, kUser };

// Reads one index. A record that cannot be read is taken for missing, and Database::FileError() of
// the store says so. With no file open, every question makes the store complain, as its header
// says, and is answered as for an empty index.
//
// Any number of readers, of one store or of several; each store is used by one thread at a time.
class KESTAN_EXPORT IndexReader {
 public:
  // Borrows `store`, which must outlive the reader.
  explicit IndexReader(Database& store);
  ~IndexReader();
  IndexReader(const IndexReader&) = delete;
  IndexReader& operator=(const IndexReader&) = delete;

  // ---- The collection ----

  // Counts by the code counter and the lists of codes, without a walk.
  DocumentCounts CountDocuments();

  // Returns the option flags; no value if the file has no such record, which every index has.
  std::optional<std::uint32_t> OptionFlags();

  // Returns whether posting records have positions: option flag 1 is not set.
  bool KeepsPositions();

  // ---- Documents ----

  // Returns the name of the document `code`, removed or not; null data if there is none.
  //   Owner    the reader. Valid until its next call, or a change of the store.
  std::string_view NameOf(Code code);

  // Returns the code of the document `name`, 0 if there is none.
  Code CodeOf(std::string_view name);

  // Returns when the document `name` was added or last renamed, in seconds since 1970; 0 if there
  // is no such document.
  std::uint32_t TimestampOf(std::string_view name);

  // Returns whether `code` is that of a document removed since the last shrink.
  bool IsRemoved(Code code);

  // Calls `visit` with each such code, in ascending order. `visit` returns whether to go on.
  void ForEachRemovedCode(const std::function<bool(Code code)>& visit);

  // Finds a text kept for `name`, which need not be that of a document.
  //   Returns  a handle that shares it, null if there is none.
  DBDatumPtr FindSideRecord(SideRecord kind, std::string_view name);

  // Calls `visit` with the name of each document, in the file's order, as Kestan::ListDocuments()
  // lists them: a word such as "d-day", whose key is that of a document "day", cannot be told from
  // one. Documents whose records cannot be read are among them. Flushes the store now and then.
  // `visit` returns whether to go on.
  //   Returns  StoreError::kNone, or an error that hides documents or their records.
  StoreError ForEachDocument(const std::function<bool(std::string_view name)>& visit);

  // ---- Words ----

  // Finds the postings of `word`, byte for byte. See WordPostings for how long they live. Where the
  // key of another record is asked for, such as that of a title, its bytes are read as postings.
  WordPostings FindWord(std::string_view word);

  // Returns how many documents hold `word`, removed ones among them until a shrink.
  std::size_t DocumentFrequency(std::string_view word) { return FindWord(word).CountDocuments(); }

  // Calls `visit` with each word and its postings, lent for the call, in the file's order. Words
  // such as "t-shirt", whose keys look like those of other records, are left out, as by
  // Kestan::CommonWords(). A word whose record cannot be read comes without postings. Flushes the
  // store now and then. `visit` returns whether to go on.
  //   Returns  as ForEachDocument() does.
  StoreError ForEachWord(
      const std::function<bool(std::string_view word, const WordPostings& postings)>& visit);

  // Calls `visit` with each word that so many documents hold, removed ones among them, and with
  // their number: the words of Kestan::CommonWords, in the file's order. Flushes the store now and
  // then. Ends at the first record that cannot be read. `visit` returns whether to go on.
  //   Returns  StoreError::kNone, or the error that ended the walk.
  StoreError ForEachCommonWord(
      FrequencyRange range,
      const std::function<bool(std::string_view word, std::size_t documents)>& visit);

  // Calls `visit` with each word of the named list `name`, lent for the call, in the order of the
  // list: the words of Kestan::DBGetWords.
  //   Returns  false if there is no such list.
  bool ForEachListedWord(std::string_view name,
                         const std::function<void(std::string_view word)>& visit);

 private:
  friend class ::Kestan;
  struct Cache;

  NameTable& names();  // those asked for so far, for listings

  Database& store_;
  std::unique_ptr<Cache> cache_;
};

}  // namespace kestan

#endif  // KESTAN_QUERY_INDEX_READER_H_
