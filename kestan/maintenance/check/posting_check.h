// SPDX-License-Identifier: GPL-3.0-or-later
// Checks that posting records, word lists and texts agree with the system records of their index.
#ifndef KESTAN_MAINTENANCE_CHECK_POSTING_CHECK_H_
#define KESTAN_MAINTENANCE_CHECK_POSTING_CHECK_H_

#include <kestan/format/id_list.h>
#include <kestan/format/posting_list.h>
#include <kestan/maintenance/check.h>
#include <kestan/maintenance/check/tables.h>
#include <kestan/maintenance/report/findings.h>
#include <kestan/storage/memory/memory.h>

#include <cstdint>

namespace kestan {

// Recognises by a sum that the positions of a document are just those from 1 to its number of
// words: each position has a weight, and hardly any other positions have the same sum.
class PositionWeights {
 public:
  PositionWeights();

  static std::uint64_t Of(Position position);

  // Returns the weight of the positions of a text of `words` words. After the last position comes
  // the first again.
  std::uint64_t OfText(std::uint64_t words) const;

 private:
  Vector<std::uint64_t> sums_;  // of the positions up to each
};

// Visits every record once, and then reports what the documents lack.
class PostingCheck {
 public:
  // Borrows both. Where the tables are incomplete, no record is judged by them.
  PostingCheck(const IndexTables& tables, CodeReuse reuse, Findings* findings);

  // Checks a record unless it is a document, name, counter, code list or option record.
  void Visit(const DBDatum& key, const DBDatum& value);

  // Reports documents without words, or with words missing, those that were removed and wait for a
  // shrink among them. Every record must have been visited.
  void CheckDocuments();

  // Notes how many words no document holds: a shrink leaves them, often by the thousand, so that
  // they share one line.
  void NoteUnusedWords();

 private:
  // What the postings of the folded words say of one document. A position belongs to one folded
  // word, so that the highest position is how many there are.
  struct DocumentStatistics {
    std::uint64_t weight = 0;  // of all its positions: see PositionWeights
    std::uint32_t positions = 0;
    std::uint32_t doubtful = 0;  // positions in records that may be those of an earlier document
    Position highest = 0;        // without the doubtful ones
    bool has_words = false;
    bool has_own_words = false;  // in other records than the doubtful ones
    bool descends = false;       // some positions do not ascend, as where they wrap after 65535
    bool wraps = false;          // the last position is taken, even if by a doubtful record
    bool is_unsure = false;      // by what may be a text, or more words than a posting can hold
  };

  // How often something is wrong within one record.
  struct Faults {
    std::uint64_t zero_codes = 0;
    std::uint64_t unknown_codes = 0;
    std::uint64_t free_codes = 0;
    std::uint64_t repeated_codes = 0;
    std::uint64_t without_positions = 0;
    std::uint64_t zero_positions = 0;
  };

  struct Record {
    const DBDatum& key;
    const DBDatum& value;
    const bool may_be_old;  // postings may be those of earlier documents
    const bool is_folded;
    const bool may_be_text;
  };

  void CheckPostings(const DBDatum& key, const DBDatum& value);
  bool NoteHyphen(const DBDatum& key, const DBDatum& value);
  void CheckEnd(const Record& record, const Posting& last);
  Faults CountFaults(const Record& record);
  void CountPositions(const Record& record, const Posting& posting, Faults* faults);
  void CheckCode(const Record& record, Code code, Faults* faults);
  void CheckText(const DBDatum& key, const DBDatum& value);
  void CheckWordList(const DBDatum& key, const DBDatum& value);
  void CheckDocument(const IndexTables::Document& document);
  void CheckRemoved(Code code);
  void CheckPlaces(const String& key, const DocumentStatistics& statistics);

  const IndexTables& tables_;
  const CodeReuse reuse_;
  Findings& findings_;
  const PositionWeights weights_;
  CodeSet known_;  // in use, or awaiting a shrink
  CodeSet reusable_;
  Vector<DocumentStatistics> statistics_;  // by code
  Vector<std::uint32_t> seen_in_;  // by code: the number of the record that it was met in last
  std::uint32_t record_number_ = 0;
  std::uint64_t unused_words_ = 0;
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_CHECK_POSTING_CHECK_H_
