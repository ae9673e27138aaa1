// SPDX-License-Identifier: GPL-3.0-or-later
// What may be meant by a word that is none of those that are known.
#ifndef KESTAN_CLI_APP_SUGGESTION_H_
#define KESTAN_CLI_APP_SUGGESTION_H_

#include <string>

#include "cli/app/command.h"

namespace kestan_cli {

// Returns the one of `known` that `word` is most like, whatever its capitals and its dashes at the
// start: a few letters added, missing, replaced or swapped, one at least and a third of them at
// most; or else the first that it is the beginning of, if it has three letters.
//   Returns  "" if there is none.
std::string MostAlike(const std::string& word, const Arguments& known);

// Returns "; did you mean 'index'?" for a word that is like `index`; "" for one that is like none.
std::string DidYouMean(const std::string& word, const Arguments& known);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_APP_SUGGESTION_H_
