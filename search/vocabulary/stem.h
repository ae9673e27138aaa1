// The stems of English words, by which a question finds what is said in other forms of its words.
#ifndef KESTAN_SEARCH_VOCABULARY_STEM_H_
#define KESTAN_SEARCH_VOCABULARY_STEM_H_

#include <string>
#include <string_view>

namespace kestan::search {

// Returns what is left of `word`, in lower case, without the endings that inflect it or make
// another word of it: "comput" for compute, computes, computed, computing, computer and
// computation. Words of one stem mean about the same; the stem itself need not be a word. A word of
// fewer than four letters is its own stem, and no other word of fewer than three letters has that
// stem.
std::string Stem(std::string_view word);

// Returns what all words of that `stem` begin with: the stem itself, or all but its last letter
// where that may be another in the word (study, studies; fly, flies).
std::string_view StemPrefix(std::string_view stem);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_VOCABULARY_STEM_H_
