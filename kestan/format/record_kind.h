// SPDX-License-Identifier: GPL-3.0-or-later
// The kind of a record, by its key and, where that is not enough, by its value.
#ifndef KESTAN_FORMAT_RECORD_KIND_H_
#define KESTAN_FORMAT_RECORD_KIND_H_

#include <kestan/format/keys.h>
#include <kestan/format/posting.h>
#include <kestan/storage/database.h>
#include <kestan/storage/dbdatum.h>

#include <cstdint>
#include <string_view>

namespace kestan {

enum class RecordKind : std::uint8_t {
  kPosting,
  kDocument,
  kName,
  kTitle,
  kSummary,
  kUser,
  kWordList,
  kCounter,
  kReusableCodes,
  kRemovedCodes,
  kOptions,
  kOther,  // its key looks like a system record's, but of no family that the engine has
};

// What reading posting records depends on.
struct PostingRules {
  bool with_positions = true;
  Code highest = 0;  // the code counter; no document ever had a higher code
};

// Reads option flags and counter. What is missing counts as 0.
PostingRules ReadPostingRules(Database& store);

// Returns whether the record is not empty and nothing but whole postings of codes from 1 up to the
// highest, each with at least one position, none of them 0. No text passes for that where
// positions are kept.
bool LooksLikePostings(const DBDatum& value, const PostingRules& rules);

// Returns whether the record can be one or more whole postings with positions, and then codes
// alone. Option flag 1 leaves the positions of words such as "e-mail", whose keys look like those
// of system records, and postings that come later have none.
bool LooksLikeMixedPostings(const DBDatum& value);

// Returns whether documents can hold such a word: it is not empty, and has no white space and no
// NUL.
bool CanBeWord(std::string_view key);

// Returns the kind of the record. `value` may be null if it is unreadable.
//
// Keys of two bytes such as "t-" belong to a word as well as to the title of the document with the
// empty name, and "d-day" or "c-section" are words too: the value decides. A posting record has
// another shape than a document record, and NULs, which no other text has that the engine stores.
// Where neither decides, or the value is empty, the record is that of a document, a name or a text.
RecordKind KindOf(const DBDatum& key, const DBDatum* value, const PostingRules& rules);

}  // namespace kestan

#endif  // KESTAN_FORMAT_RECORD_KIND_H_
