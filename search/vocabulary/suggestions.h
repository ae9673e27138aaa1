// Words that may be meant by a misspelled one.
#ifndef KESTAN_SEARCH_VOCABULARY_SUGGESTIONS_H_
#define KESTAN_SEARCH_VOCABULARY_SUGGESTIONS_H_

#include <string>
#include <vector>

#include "search/vocabulary/fuzzy_match.h"
#include "search/vocabulary/vocabulary.h"

namespace kestan::search {

// Returns up to three words that may be meant by `word`, which no document has: the closest, among
// equally close ones the most frequent. They have at least two letters, no capitals, and are in
// some document. A word of one or two letters is taken to have no mistake, one of up to four
// letters at most one, a longer one at most two; capitals are not mistakes.
std::vector<std::string> Suggestions(const Vocabulary& vocabulary, const std::string& word,
                                     const DocumentFrequency& document_frequency);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_VOCABULARY_SUGGESTIONS_H_
