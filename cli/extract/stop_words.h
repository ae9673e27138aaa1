// Words too common to tell documents apart.
#ifndef KESTAN_CLI_EXTRACT_STOP_WORDS_H_
#define KESTAN_CLI_EXTRACT_STOP_WORDS_H_

#include <string>
#include <string_view>

namespace kestan_cli {

// Returns the stop words that `choice` names, separated by white space: none for "", a list of
// its own for "english", else those in the file at the path `choice`, in any script. Spelled as
// words are indexed: without accents and apostrophes.
//   Throws   CommandError if the file cannot be read or is no text.
std::string StopWords(const std::string& choice);

// Tells whether `word`, as it is indexed, says nothing of what a question is about (the, of,
// which). It may begin with a capital; with more of them (IT, US) it is a name.
bool IsStopWord(std::string_view word);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_STOP_WORDS_H_
