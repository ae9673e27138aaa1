// SPDX-License-Identifier: GPL-3.0-or-later
// A new index file, written in one go.
#ifndef KESTAN_BUILDING_INDEX_BUILDER_H_
#define KESTAN_BUILDING_INDEX_BUILDER_H_

#include <kestan/format/posting.h>
#include <kestan/query/index_reader.h>
#include <kestan/storage/export.h>
#include <kestan/storage/gdbm/record_place.h>
#include <kestan/storage/store_error.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace kestan {

// Appends the posting of a document to the bytes of a posting record: its code, how many positions
// follow, the positions. Of more than 65535 positions, the first 65535 are kept.
KESTAN_EXPORT void AppendPosting(Code code, const Positions& positions, std::string* record);

// The same with positions from another posting record.
KESTAN_EXPORT void AppendPosting(Code code, const EncodedPositions& positions, std::string* record);

// The same for an index without positions: the code alone.
KESTAN_EXPORT void AppendPosting(Code code, std::string* record);

// Writes a new index file: the records that class Kestan would make of the same documents, one
// after the other, then gdbm's buckets and directory, and the header last. Each record is written
// once, and nothing is written over. The file is a valid gdbm file for everybody, and can be
// changed later like any other.
//
//   kestan::IndexBuilder builder;
//   if (builder.Open("new.index", {}) != kestan::StoreError::kNone) return 1;
//   builder.AddDocument(1, "a.txt", 1700000000);
//   builder.AddWord("hello", record);
//   if (builder.Finish() != kestan::StoreError::kNone) return 1;
//
// Every Add... returns where its record lies; {} after an error, which Finish() reports. A record
// moves only where hundreds of keys have one hash, and then its key is no longer at the old place.
// No key may come twice: Finish() then fails with kUnknown. Use it from one thread at a time.
class KESTAN_EXPORT IndexBuilder {
 public:
  struct Options {
    std::uint32_t option_flags = 0;  // see kFlagNoPositions

    // About how many there will be, two for each document; 0 if nobody knows. Need not be right,
    // but with about so many the file is the smallest.
    std::size_t expected_records = 0;
  };

  IndexBuilder();
  ~IndexBuilder();  // without Finish(), the file is left as it is, and is not a valid one
  IndexBuilder(const IndexBuilder&) = delete;
  IndexBuilder& operator=(const IndexBuilder&) = delete;

  // Creates the file at `path`, where there must be none.
  //   Returns  kNone; kNotOpen if the builder has a file; kFileOpen, errno says why.
  StoreError Open(const char* path, const Options& options);

  // Adds the two records of the document `name`. Codes begin with 1 and leave none out, in any
  // order. `added` is in seconds since 1970.
  void AddDocument(Code code, std::string_view name, std::uint32_t added);

  // Adds the posting record of `word`, which AppendPosting() made. Refused, without an error, are
  // what is no word, for it is empty or holds white space or a NUL, and words whose key belongs to
  // another record of the file, as "t-shirt" beside the title of a document "shirt" or "g-code"
  // everywhere; so documents and side records are added first. Refused too are words that gdbm
  // gives one hash, or nearly one, after the first 4,096 of them, which somebody must have chosen.
  //   Returns  where the record lies; {} if the word is refused.
  RecordPlace AddWord(std::string_view word, std::string_view record);

  // Returns how many words of this file were refused because too many have their hash.
  std::size_t words_left_out() const;

  // Adds a text for `name`, which need not be that of a document. May be empty.
  RecordPlace AddSideRecord(SideRecord kind, std::string_view name, std::string_view text);

  // Writes buckets, directory and header, and closes the file. Does not sync it.
  //   Returns  kNone, or the first error: kFileWrite, kFileRead, kFileClose (errno says why),
  //            kMalformedData (a key or text past 2,147,483,647 bytes), kDirectoryOverflow (too
  //            many names of one hash), kUnknown (a key came twice); kNotOpen without a file.
  StoreError Finish();

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace kestan

#endif  // KESTAN_BUILDING_INDEX_BUILDER_H_
