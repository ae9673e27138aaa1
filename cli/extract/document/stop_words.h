// SPDX-License-Identifier: GPL-3.0-or-later
// The stop words of an index: those that the user chooses to leave out.
#ifndef KESTAN_CLI_EXTRACT_DOCUMENT_STOP_WORDS_H_
#define KESTAN_CLI_EXTRACT_DOCUMENT_STOP_WORDS_H_

#include <string>

namespace kestan_cli {

// Returns the stop words that `choice` names, as they are stored, each followed by a blank: none
// for "", the built-in list for "english", else those in the file at the path `choice`, in any
// script.
//   Throws   CommandError if the file cannot be read or is not a text.
std::string StopWords(const std::string& choice);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_DOCUMENT_STOP_WORDS_H_
