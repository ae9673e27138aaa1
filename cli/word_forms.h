// What little the command knows of English, for questions in plain words.
#ifndef KESTAN_CLI_WORD_FORMS_H_
#define KESTAN_CLI_WORD_FORMS_H_

#include <string>
#include <string_view>
#include <vector>

namespace kestan_cli {

// Tells whether `word` says nothing of what a question is about (the, of, which). It may begin with
// a capital; with more of them (IT, US) it is a name.
bool IsStopWord(std::string_view word);

// Returns forms that `word`, in small letters, may have, itself first and each once: flow, flows,
// flowed, flowing. Guesses by its ending; many of them are no words. Words of three letters get
// an s at most, shorter ones none.
std::vector<std::string> FormsOf(const std::string& word);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_WORD_FORMS_H_
