// SPDX-License-Identifier: GPL-3.0-or-later
// Which terms of a segment a query without operands stands for.
#ifndef KESTAN_SEARCH_MATCHING_LEAF_TERMS_H_
#define KESTAN_SEARCH_MATCHING_LEAF_TERMS_H_

#include <kestan/search/status.h>

#include <functional>

#include "search/query/query.h"
#include "search/segment/term_dictionary.h"
#include "search/vocabulary/stem.h"

namespace kestan::search {

// Calls `visit` with each term of `terms` that `leaf` stands for, in order of their bytes: of a
// word, itself; of a prefix, all that begin with it; of a fuzzy word, those within its edits; of
// inflections, those that have the word's stem, found by `stemmer`. As in documents, a word without
// capitals stands for terms without any. A prefix costs what it finds; inflections, a look at what
// begins as the stem does; a fuzzy word, a look at each term without capitals. The entry is lent
// for the call. Stops when `visit` returns an error, and returns it; kSystem where inflections need
// libstemmer and it cannot be loaded.
Status ForEachTermOf(const TermDictionary& terms, const Query& leaf, Stemmer* stemmer,
                     const std::function<Status(const TermEntry&)>& visit);

// Calls `visit` with each term of `terms` that is at most `edits` edits away from `word`, and with
// how many it is away. Otherwise the same.
Status ForEachFuzzyTerm(const TermDictionary& terms, std::string_view word, int edits,
                        const std::function<Status(const TermEntry&, int edits)>& visit);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_MATCHING_LEAF_TERMS_H_
