// SPDX-License-Identifier: GPL-3.0-or-later
// What queries and an open index answer, as values.
#ifndef KESTAN_ENGINE_RESULTS_H_
#define KESTAN_ENGINE_RESULTS_H_

#include <kestan/engine/kestan.h>
#include <kestan/format/posting.h>
#include <kestan/query/index_reader.h>
#include <kestan/query/matches.h>
#include <kestan/storage/export.h>

#include <cstddef>
#include <optional>

namespace kestan {

// Returns the matches of the result set `id` in ascending order of their codes, removed documents
// and codes without a document among them; none for an unknown id. Copies nothing.
//   Owner    the set. Valid until Kestan::FreeQueryResult(id).
//
//   for (const kestan::Match match : kestan::MatchesOf(id)) {
//     if (!reader.IsRemoved(match.code)) Use(reader.NameOf(match.code), match.score);
//   }
KESTAN_EXPORT Matches MatchesOf(int id);

// Returns a reader of the index that `engine` has open: counts, names, words and their postings. It
// sees changes that wait to be written.
//   Owner    `engine`. Valid as long as that is; after OpenIndex, it reads the index opened then.
KESTAN_EXPORT IndexReader& ReaderOf(Kestan& engine);

// Adds a document as Kestan::AddDocumentWords() does, whose text goes into the scratch buffer here
// too.
//   Returns  how many words the index had never seen; no value if the document was not added.
KESTAN_EXPORT std::optional<std::size_t> AddWords(Kestan& engine, const char* name,
                                                  const char* text);

}  // namespace kestan

#endif  // KESTAN_ENGINE_RESULTS_H_
