// SPDX-License-Identifier: GPL-3.0-or-later
// From a token of a query to its words.
#ifndef KESTAN_SEARCH_QUERY_QUERY_WORDS_H_
#define KESTAN_SEARCH_QUERY_QUERY_WORDS_H_

#include <cstddef>
#include <string_view>
#include <vector>

#include "search/query/query.h"
#include "search/query/query_tokens.h"
#include "search/text/text_rules.h"

namespace kestan::search {

// Words side by side in a text, as documents have them.
using QueryWords = std::vector<Query>;

// The operator that a word ends with.
struct WordSuffix {
  Query::Kind kind = Query::Kind::kWord;
  int edits = 0;
  std::size_t bytes = 0;
};

WordSuffix SuffixOf(std::string_view text);

// Returns the words of a token that is a word or a phrase: each of the lists is of words that hang
// together, and none is empty. Of a phrase all do. The suffix of a word belongs to the last of them
// if it stands right after that.
std::vector<QueryWords> WordsOf(const Token& token, TextRules rules);

// The same for `text` outside quotes, after which `suffix` stood.
std::vector<QueryWords> WordsOfText(std::string_view text, const WordSuffix& suffix,
                                    TextRules rules);

// The same for `text` in quotes: one list at most.
std::vector<QueryWords> WordsOfPhrase(std::string_view text, TextRules rules);

// Returns a query for each list of `words`: those that hang together must stand in a row. What is
// of a phrase, or hangs together, is exact.
std::vector<Query> PartsOf(std::vector<QueryWords> words, bool is_phrase, QuotesMean quotes);

// Makes the words of `*query` ask for their forms too, but stop words and those that are exact.
void AskForForms(Query* query);

// Returns whether `words`, which hang together, are a stop word that an apostrophe divides (don't).
bool AreDividedStopWord(const QueryWords& words);

// Returns whether `query` is what an apostrophe leaves after a word (it's, we'll).
bool IsEnding(const Query& query);

// Returns whether `query` is a word of a script that has no blanks between words.
bool IsOfUnspacedScript(const Query& query);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_QUERY_WORDS_H_
