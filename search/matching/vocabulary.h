// SPDX-License-Identifier: GPL-3.0-or-later
// The terms of all segments of a snapshot as one vocabulary.
#ifndef KESTAN_SEARCH_MATCHING_VOCABULARY_H_
#define KESTAN_SEARCH_MATCHING_VOCABULARY_H_

#include <kestan/search/status.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "search/segment/snapshot.h"
#include "search/vocabulary/fuzzy_match.h"

namespace kestan::search {

// Returns how many living documents hold `term`, byte for byte.
Result<std::uint64_t> LivingDocumentsWith(const Snapshot& snapshot, std::string_view term);

// Returns whether more than half of the living documents hold `term`, byte for byte. Reads postings
// of terms that may be as common only, and only of segments with removed documents.
Result<bool> IsInMostDocuments(const Snapshot& snapshot, std::string_view term);

// Calls `visit` with each term that begins with `prefix`, once, in order of its bytes, until it
// returns false. Terms that only removed documents hold are among them.
Status ForEachTerm(const Snapshot& snapshot, std::string_view prefix,
                   const std::function<bool(std::string_view term)>& visit);

// Returns the terms that may be meant by `word`, which no living document has: the closest,
// among those as close the one that most living documents hold. They have at least two letters and
// no capitals. A word of one or two letters is taken to have no mistake, one of up to four letters
// one at most, a longer one two; capitals are no mistakes. Takes a look at each term. Documents are
// counted without removed ones.
Result<std::vector<FuzzyMatch>> ClosestTerms(const Snapshot& snapshot, std::string_view word);

// Returns the first three of them.
Result<std::vector<std::string>> SuggestionsFor(const Snapshot& snapshot, std::string_view word);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_MATCHING_VOCABULARY_H_
