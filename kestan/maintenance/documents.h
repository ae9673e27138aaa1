// SPDX-License-Identifier: GPL-3.0-or-later
// The documents of an index as they went in: name, side records, and the words back in their order.
#ifndef KESTAN_MAINTENANCE_DOCUMENTS_H_
#define KESTAN_MAINTENANCE_DOCUMENTS_H_

#include <kestan/storage/database.h>
#include <kestan/storage/export.h>
#include <kestan/storage/store_error.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace kestan {

struct PlacedWord {
  std::string_view bytes;
  std::uint16_t position;  // from 1, and after 65535 from 1 again; 0 where none is known
};

// One document. All of it is lent for the time of the call that gives it.
struct StoredDocument {
  std::string_view name;
  std::uint16_t code = 0;
  std::uint32_t timestamp = 0;  // when it was added or last moved, in seconds since 1970
  std::optional<std::string_view> title;
  std::optional<std::string_view> summary;
  std::optional<std::string_view> user;

  // The words, each spelled as the text had it, by ascending position and, where several share
  // one, in order of their bytes. Of a text of more than 65535 words, those of every round share
  // positions. Without positions each word is there once, in lower case if the text had it so too.
  const PlacedWord* words = nullptr;
  std::size_t word_count = 0;
  bool has_positions = true;  // false where option flag 1 keeps none
};

using TakeDocument = std::function<void(const StoredDocument& document)>;

// How many places of words ReadDocuments holds at once, 8 bytes each: enough for 65,535 documents
// of 200 words.
inline constexpr std::size_t kPlacesAtOnce = std::size_t{1} << 24;

// Hands each document of the index in `store` that queries can list to `take`, by ascending code.
// What `take` throws passes through. Flushes the store now and then.
//
// Reads all postings once to count, and once more for each `places_at_once` places of words that
// there are; a document with more is held whole. A word such as "t-shirt", whose key is that of a
// title, cannot be told from one and is left out, as are all of the families g d c w u s t. A
// one-letter word may come from an earlier document that had the same code, where queries find it
// too, since no shrink takes it away: see Kestan::PurgeShortWords.
//   Returns  StoreError::kNone; kNotOpen if no file is open; or the error that kept a record from
//            being read. Then documents are missing.
//   Memory   all words of the index and names of documents, 8 bytes for each place held at once,
//            24 for each word of the document given, and what gdbm keeps: for 65,535 documents of
//            200 words some 200 MB.
KESTAN_EXPORT StoreError ReadDocuments(Database& store, const TakeDocument& take,
                                       std::size_t places_at_once = kPlacesAtOnce);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_DOCUMENTS_H_
