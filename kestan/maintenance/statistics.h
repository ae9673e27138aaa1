// SPDX-License-Identifier: GPL-3.0-or-later
// What an index holds, in numbers.
#ifndef KESTAN_MAINTENANCE_STATISTICS_H_
#define KESTAN_MAINTENANCE_STATISTICS_H_

#include <kestan/storage/database.h>
#include <kestan/storage/export.h>
#include <kestan/storage/store_error.h>

#include <array>
#include <cstdint>

namespace kestan {

// Records of one kind.
struct RecordBytes {
  std::uint64_t records = 0;
  std::uint64_t key_bytes = 0;
  std::uint64_t value_bytes = 0;
};

// Words that about as many documents hold.
struct FrequencyClass {
  std::uint64_t words = 0;
  std::uint64_t postings = 0;
};

// Numbers of one index. Words, postings and positions are those of the records as they stand:
// removed documents count until a shrink. Where records cannot be read, they are missing here.
struct IndexStatistics {
  // Class k counts the words that 2^(k-1) + 1 to 2^k documents hold: 1, 2, 3-4, 5-8 and so on. The
  // last class also takes records that list more documents than there can be.
  static constexpr std::size_t kFrequencyClasses = 17;

  std::uint64_t documents = 0;       // document records; each has a code, which is in use
  std::uint64_t removed_codes = 0;   // of documents removed since the last shrink
  std::uint64_t reusable_codes = 0;  // that the next documents get
  std::uint64_t highest_code = 0;    // handed out so far; at 65535 only reusable ones are left
  std::uint64_t option_flags = 0;    // as Kestan::Options() says

  std::uint64_t words = 0;      // distinct, written and folded forms both
  std::uint64_t unused = 0;     // words among them that no document holds any more
  std::uint64_t postings = 0;   // pairs of a word and a document
  std::uint64_t positions = 0;  // 0 with option flag 1
  std::array<FrequencyClass, kFrequencyClasses> frequencies{};

  RecordBytes posting_records;
  RecordBytes document_records;
  RecordBytes name_records;
  RecordBytes titles;
  RecordBytes summaries;
  RecordBytes user_records;
  RecordBytes word_lists;
  RecordBytes system_records;  // counter, code arrays and option flags
  RecordBytes other_records;   // with keys that the engine has no use for

  std::uint64_t file_bytes = 0;
  std::uint64_t record_bytes = 0;             // of all keys and values
  std::uint64_t removed_posting_bytes = 0;    // of postings that a shrink purges
  std::uint64_t smallest_file_bytes = 0;      // about what a shrink leaves; see below
  std::uint64_t reclaimable_bytes = 0;        // about what a shrink gives back
  StoreError file_error = StoreError::kNone;  // the first error; the numbers are incomplete then
};

// Counts the records that `store` holds; IndexReader::CountDocuments() says how many documents
// there are without reading them all. `store` is open for reading or writing and has no changes of
// an engine's that wait elsewhere. Changes nothing, but makes `store` flush.
//
// What a shrink leaves is estimated, for gdbm alone knows how it will lay records out: keys and
// values without the postings of removed documents; 2048 bytes for the header and the first bucket;
// 107 bytes a record for further buckets and the directory, and for the space that they lose each
// time they grow; and what no longer fits a block of 512 bytes, s * s / 1024 for a record of s
// bytes, at most 256. The first number and the last follow from gdbm's layout, the 107 is measured.
// Files of more than 1,000 records are within a fifth of the estimate.
//   Returns  the numbers; all 0 with the file error kNotOpen if no file is open, which the store
//            says.
//   Cost     one walk over the file; memory for 1,000 records or 16 MiB of them.
KESTAN_EXPORT IndexStatistics ReadStatistics(Database& store);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_STATISTICS_H_
