// SPDX-License-Identifier: GPL-3.0-or-later
// The postings of one word, as a posting record has them.
#ifndef KESTAN_QUERY_WORD_POSTINGS_H_
#define KESTAN_QUERY_WORD_POSTINGS_H_

#include <kestan/format/posting.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/storage/export.h>

#include <cstddef>
#include <cstdint>

namespace kestan {

// The documents that hold a word, in ascending order of their codes, each once, and where they hold
// it. A view of the record, which the object shares with the store and keeps alive. Only for a
// record whose codes are out of order, as codes that are used again may be, a cursor makes a copy.
// Changes of the index do not show reliably: use the postings before the next one.
//
//   for (WordPostings::Cursor cursor(postings); cursor.Next();) Use(cursor.code());
class KESTAN_EXPORT WordPostings {
 public:
  // Those of a word that the index lacks.
  WordPostings() = default;

  // Shares `record`, null if there is none.
  WordPostings(DBDatumPtr record, bool with_positions);

  // Returns whether the index has the word. One that no document holds any more may have no
  // postings.
  bool has_word() const { return record_.ptr != nullptr; }

  // Returns whether the record has positions. If not, those of each document are empty, which means
  // that they are not known.
  bool with_positions() const { return with_positions_; }

  // Returns how many documents hold the word. Reads the whole record. One that a damaged record
  // lists twice counts twice, as for Kestan::CommonWords.
  std::size_t CountDocuments() const;

  // Goes through the postings, once.
  class KESTAN_EXPORT Cursor {
   public:
    // Shares the record of `postings`, or copies one that is out of order. Stands before the first
    // posting.
    explicit Cursor(const WordPostings& postings);

    // Goes to the next posting.
    //   Returns  false if there is none.
    bool Next();

    Code code() const { return code_; }
    EncodedPositions positions() const { return positions_; }

   private:
    DBDatumPtr record_;
    bool with_positions_;
    std::size_t next_unit_ = 0;
    Code code_ = 0;
    EncodedPositions positions_;
  };

 private:
  DBDatumPtr record_;
  bool with_positions_ = false;
};

}  // namespace kestan

#endif  // KESTAN_QUERY_WORD_POSTINGS_H_
