// SPDX-License-Identifier: GPL-3.0-or-later
// The query language: from text to a query.
#ifndef KESTAN_SEARCH_QUERY_QUERY_PARSER_H_
#define KESTAN_SEARCH_QUERY_QUERY_PARSER_H_

#include <optional>
#include <string_view>

#include "search/query/optional_words.h"
#include "search/query/query.h"
#include "search/text/text_rules.h"

namespace kestan::search {

// How deep parentheses and NOTs may be nested, so that no query can exhaust the stack.
constexpr unsigned kMaxQueryDepth = 200;

// The operator of words side by side.
enum class DefaultOperator {
  kAnd,            // documents must hold all of them
  kAndOfQuestion,  // the same, for a question in plain words: stop words are left out
  kOr,             // documents must hold any of them, as for a question in plain words
  kOrOfQuestion,   // the same, and more freely read
};

// Parses `text`, whatever it holds:
//
//   query = all { "OR" all }              loosest
//   all   = near { ["AND"] near }         words side by side mean AND
//   near  = part { "NEAR/k" part }        at most k words apart, in either order; k is 1 or more
//   part  = ("NOT" | "-") part | "(" query ")" | '"' words '"' | word ["*" | "~" | "~1" | "~2"]
//
// Operators are in capitals; the "-" of NOT follows a blank or "(" and stands right before a word,
// a "(" or a quote. Words go through IndexedWords as documents do; where that makes several of one
// (e-mail), and for the words in quotes, each must stand next to the one before: `quotes` says
// whether also in that order.
//
// There are no errors. An operator that lacks an operand is a word; a parenthesis or a quote
// without its partner is left out, and so is a part without letters, together with its operator.
// Deeper than kMaxQueryDepth, parentheses are left out and NOT is a word.
//
// With kOr, words side by side mean OR, and NOT beside them excludes documents. Among the words so
// joined, stop words are left out unless all are. Of scripts without blanks, words that hang
// together are words side by side.
//
// With kOrOfQuestion also, words that punctuation joins (two-dimensional) are words side by side,
// words that people ask with (using, anyone, e.g.) are stop words, and a capital that begins a word
// is read as a small letter.
//
// With kAndOfQuestion, stop words side by side with others are left out, unless all are stop words.
//
// With these three, words in lower case become kInflections, but stop words and those that are
// exact: in quotes, or part of what hangs together. Words for which `is_common` become kOptional,
// unless all are common that are no stop words. `optional`, unless it is null, is set to the words
// that were left out or made optional.
//
//   Returns  nothing if no letters are left.
//   Throws   TransliterationError, std::bad_alloc.
std::optional<Query> ParseQuery(std::string_view text,
                                DefaultOperator default_operator = DefaultOperator::kAnd,
                                QuotesMean quotes = QuotesMean::kNear,
                                TextRules rules = TextRules::kAsciiLetters,
                                const IsCommonWord& is_common = {},
                                OptionalWords* optional = nullptr);

// Returns whether `text` is a question in plain words: no operators, at least four different words
// that are neither stop words nor common, and also some that are, or a question mark at the end, or
// eight of the first kind.
bool IsQuestion(std::string_view text, TextRules rules = TextRules::kAsciiLetters,
                const IsCommonWord& is_common = {});

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_QUERY_PARSER_H_
