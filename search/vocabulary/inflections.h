// The inflections of English words, which questions in plain words are expanded with.
#ifndef KESTAN_SEARCH_VOCABULARY_INFLECTIONS_H_
#define KESTAN_SEARCH_VOCABULARY_INFLECTIONS_H_

#include <string>
#include <vector>

namespace kestan::search {

// Returns the inflections that `word`, in lower case, may have, each once; `word` itself comes
// first: flow, flows, flowed, flowing. Guesses by its ending, so many of them are not words. A word
// of three letters gets at most an s, a shorter one nothing.
std::vector<std::string> Inflections(const std::string& word);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_VOCABULARY_INFLECTIONS_H_
