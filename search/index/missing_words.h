// SPDX-License-Identifier: GPL-3.0-or-later
// Words of a query that no document has.
#ifndef KESTAN_SEARCH_INDEX_MISSING_WORDS_H_
#define KESTAN_SEARCH_INDEX_MISSING_WORDS_H_

#include <kestan/search/status.h>

#include <cstddef>
#include <string>
#include <vector>

#include "search/query/query.h"
#include "search/segment/snapshot.h"
#include "search/vocabulary/fuzzy_match.h"

namespace kestan::search {

struct MissingWord {
  std::string word;
  std::vector<std::string> suggestions;  // words that may be meant, the likeliest first
};

// Returns the first ten words of `query` outside NOT that no living document has, in order; where
// forms of a word were asked for, that no document has in any form. Words that stand for others
// (prefix*, fuzzy~) are not among them.
//   Returns  kDamaged.
Result<std::vector<MissingWord>> MissingWords(const Query& query, const Snapshot& snapshot);

// Returns words that may be meant by those, each once: for one of them after the other, the
// likeliest first, all that come into question; `limit` at most, or all if it is 0.
//   Returns  kDamaged.
Result<std::vector<FuzzyMatch>> SuggestedWords(const Query& query, const Snapshot& snapshot,
                                               std::size_t limit);

// Returns the note on `missing`: no document has 'lyer'; did you mean 'layer'?
std::string NoteOn(const MissingWord& missing);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_MISSING_WORDS_H_
