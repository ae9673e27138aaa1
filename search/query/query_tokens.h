// SPDX-License-Identifier: GPL-3.0-or-later
// Cuts the text of a query into tokens, which the parser reads without errors.
#ifndef KESTAN_SEARCH_QUERY_QUERY_TOKENS_H_
#define KESTAN_SEARCH_QUERY_QUERY_TOKENS_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

struct Token {
  enum class Kind { kWord, kPhrase, kAnd, kOr, kNear, kNot, kOpen, kClose, kEnd };
  Kind kind = Kind::kEnd;
  std::string text;         // of a phrase: what stands between the quotes
  int distance_words = 0;   // of kNear
  std::size_t partner = 0;  // of kOpen: where its kClose is
  std::size_t offset = 0;   // where it begins in the text, in bytes; kept where mistakes are
};

// What of a text is not read as it is written.
struct QueryMistake {
  std::string message;     // for a person, on one line
  std::size_t offset = 0;  // where it is in the text, in bytes
};

// Cuts `text` into tokens; the last is kEnd, and there is no other. Every kOpen has its kClose,
// every kNot is followed by a part, and every other operator stands between two parts. An operator
// that lacks a part is a word; a parenthesis that lacks its partner is left out. A part may turn
// out to hold no letters. Adds what was left out or taken for a word to `*mistakes`, unless that is
// null, in no order.
std::vector<Token> TokensOf(std::string_view text, std::vector<QueryMistake>* mistakes = nullptr);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_QUERY_TOKENS_H_
