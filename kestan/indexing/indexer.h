// SPDX-License-Identifier: GPL-3.0-or-later
// Adding, removing and renaming documents.
#ifndef KESTAN_INDEXING_INDEXER_H_
#define KESTAN_INDEXING_INDEXER_H_

#include <kestan/storage/database.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/text/scratch_text.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestan {

enum class AddOutcome : std::uint8_t {
  kAdded,
  kFull,        // every code has been handed out; an earlier version is removed all the same
  kUnreadable,  // with nothing changed: a record that it takes cannot be read
  kCodeZero,    // the list of reusable codes holds a 0, which is taken off; nothing is added
};

// What adding a document did.
struct Addition {
  AddOutcome outcome;
  std::size_t new_words = 0;  // how many words the index had never seen
};

// Adds the words of `text`, which white space separates, as the document `name`, in place of an
// earlier version. Copies both. `reusable_codes` is the value of "g-avail", from which the code
// comes if it has any; `with_positions` says whether the index keeps them. A word whose record
// cannot be read is left out. On kAdded, `*new_words` holds the words that the index had never
// seen, in order of their bytes, each followed by a line feed; NUL-terminated.
//   Prints   "Kestan: Too many documents (max=65535) -- try shrinking database" on kFull;
//            "Kestan: Posting record of 'WORD' is full -- entry left out" where a record would pass
//            2,147,483,647 bytes.
Addition AddDocument(Database& store, const DBDatumPtr& reusable_codes, bool with_positions,
                     std::string_view name, std::string_view text, ScratchBuffer* new_words);

// Deletes the two records of the document `name` and lists its code as removed.
//   Returns  0; 1 if there is no such document or no file is open; -1 with nothing changed if the
//            document's record or the list of removed codes cannot be read.
int RemoveDocument(Database& store, std::string_view name);

// Renames a document and renews its timestamp.
//   Returns  0; -1 if there is no such document or no file is open, or its name record is missing;
//            -2 with nothing changed if one of its two records cannot be read.
//   Prints   "Kestan: Could not fetch document for code CODE (oops!)" where the name record is
//            missing.
int RenameDocument(Database& store, std::string_view old_name, std::string_view new_name);

// Returns when the document `name` was added or last renamed, in seconds since 1970; 0 if there is
// no such document or no file is open.
std::uint32_t TimestampOf(Database& store, std::string_view name);

}  // namespace kestan

#endif  // KESTAN_INDEXING_INDEXER_H_
