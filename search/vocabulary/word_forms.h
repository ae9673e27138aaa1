// Other forms of English words, for questions in plain words.
#ifndef KESTAN_SEARCH_VOCABULARY_WORD_FORMS_H_
#define KESTAN_SEARCH_VOCABULARY_WORD_FORMS_H_

#include <string>
#include <vector>

namespace kestan::search {

// Returns forms that `word`, in small letters, may have, itself first and each once: flow, flows,
// flowed, flowing. Guesses by its ending; many of them are no words. Words of three letters get
// an s at most, shorter ones none.
std::vector<std::string> FormsOf(const std::string& word);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_VOCABULARY_WORD_FORMS_H_
