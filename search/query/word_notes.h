// SPDX-License-Identifier: GPL-3.0-or-later
// Notes on words of a query that do not decide what is found.
#ifndef KESTAN_SEARCH_QUERY_WORD_NOTES_H_
#define KESTAN_SEARCH_QUERY_WORD_NOTES_H_

#include <string>
#include <string_view>
#include <vector>

#include "search/query/optional_words.h"
#include "search/query/query_tokens.h"
#include "search/query/query_words.h"
#include "search/text/text_rules.h"

namespace kestan::search {

// Returns the beginning of `text` in quotes, for a message: on one line and without a part of a
// character.
std::string Shown(std::string_view text);

// Returns whether a word of `token`, whose words are `words`, is longer than those of an index.
bool HoldsCutWord(const std::vector<QueryWords>& words, const Token& token);

// Adds the beginning of `token` to `*cut` if so, once.
void AddIfCut(const std::vector<QueryWords>& words, const Token& token,
              std::vector<std::string>* cut);

// Returns what to say of those words: a line for all, or nothing.
std::vector<std::string> NotesOnCutWords(const std::vector<std::string>& cut);

// Returns what to say of parts of `text` that hold nothing to search for, other than punctuation,
// and of words that are too long: a line for all of each kind.
std::vector<std::string> NotesOnIgnoredText(std::string_view text, TextRules rules);

// Returns what to say of `optional`: a line for each of its lists that is not empty.
std::vector<std::string> NotesOnOptionalWords(const OptionalWords& optional);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_WORD_NOTES_H_
