// The language of queries.
#ifndef KESTAN_CLI_QUERY_H_
#define KESTAN_CLI_QUERY_H_

#include <string>
#include <string_view>
#include <vector>

namespace kestan_cli {

// How deep parentheses and NOTs may be nested, so that no query can exhaust the stack.
constexpr unsigned kMaxQueryDepth = 200;

// A query, or a part of one, as a tree. Chains of the same operator are one node, so that the tree
// is no deeper than the query is nested.
struct Query {
  enum class Kind {
    kWord,  // `word`; no operands
    kNot,   // one operand
    kNear,  // two operands or more: each within its distance from the one before
    kAnd,   // two operands or more
    kOr,    // two operands or more
  };
  Kind kind = Kind::kWord;
  std::string word;  // lower-case letters, as the index has it
  std::vector<Query> operands;
  int distance_words = 0;  // of an operand of kNear: how far from the operand before it
};

// Reads `text`:
//
//   query = all { "OR" all }            loosest
//   all   = near { ["AND"] near }       words side by side mean AND
//   near  = part { "NEAR/k" part }      at most k words apart, in either order; k is 1 or more
//   part  = "NOT" part | "(" query ")" | word
//
// Operators are in capitals. A word is cleaned as documents are; where that makes several words of
// it (e-mail), they must stand next to each other.
//   Throws   CommandError "query, column N: WHAT" if it cannot be read. Columns count characters,
//            from 1.
Query ParseQuery(std::string_view text);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_QUERY_H_
