// SPDX-License-Identifier: GPL-3.0-or-later
// Queries as trees.
#ifndef KESTAN_SEARCH_QUERY_QUERY_H_
#define KESTAN_SEARCH_QUERY_QUERY_H_

#include <optional>
#include <string>
#include <vector>

namespace kestan::search {

// A query, or a part of one. Chains of the same operator are one node, so that the tree is no
// deeper than the query is nested.
struct Query {
  enum class Kind {
    kWord,         // `word`; no operands, like the next three
    kPrefix,       // every word that begins with `word`
    kFuzzy,        // every word at most `edits` edits away from `word`
    kInflections,  // `word` and its other forms in the language of the index (flow, flows)
    kNot,          // one operand
    kNear,         // two operands or more: each within its distance from the one before
    kAnd,          // two operands or more
    kOr,           // two operands or more
    kPhrase,       // two operands or more, without operands of their own, one right after the other
    kOptional,     // one operand; among those of AND and OR it scores, and decides nothing
  };
  Kind kind = Kind::kWord;
  std::string word;  // ASCII letters. With a capital it stands for itself, else for any case
  std::vector<Query> operands;
  int distance_words = 0;  // of an operand of kNear: how far from the operand before it
  int edits = 0;           // of kFuzzy: 1 or 2
  bool is_exact = false;   // of kWord: in quotes, or part of what hangs together. Not compared
};

// What words in quotes mean, and words that punctuation joins (e-mail).
enum class QuotesMean {
  kNear,    // kNear: each is at most one word away from the one before, in either order
  kPhrase,  // kPhrase: in that order, each right after the one before
};

bool operator==(const Query& left, const Query& right);

// Returns a node for `operands`, the only one of them, or nothing.
std::optional<Query> Combined(Query::Kind kind, std::vector<Query> operands);

// Orders queries, for sorted containers.
struct QueryLess {
  bool operator()(const Query* left, const Query* right) const;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_QUERY_H_
