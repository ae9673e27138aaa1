// The language of queries.
#ifndef KESTAN_SEARCH_QUERY_QUERY_H_
#define KESTAN_SEARCH_QUERY_QUERY_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

// How deep parentheses and NOTs may be nested, so that no query can exhaust the stack.
constexpr unsigned kMaxQueryDepth = 200;

// A query, or a part of one, as a tree. Chains of the same operator are one node, so that the tree
// is no deeper than the query is nested.
struct Query {
  enum class Kind {
    kWord,    // `word`; no operands, like the next three
    kPrefix,  // every word that begins with `word`
    kFuzzy,   // every word at most `edits` edits away from `word`
    kForms,   // `word` and its other forms in English (flow, flows, flowing)
    kNot,     // one operand
    kNear,    // two operands or more: each within its distance from the one before
    kAnd,     // two operands or more
    kOr,      // two operands or more
  };
  Kind kind = Kind::kWord;
  std::string word;  // ASCII letters. With a capital it asks for itself, else for any case
  std::vector<Query> operands;
  int distance_words = 0;  // of an operand of kNear: how far from the operand before it
  int edits = 0;           // of kFuzzy: 1 or 2
};

bool operator==(const Query& left, const Query& right);

// An order of queries, for tables of them.
struct QueryLess {
  bool operator()(const Query* left, const Query* right) const;
};

// What words side by side mean.
enum class SideBySide {
  kAll,  // documents that hold all of them
  kAny,  // documents that hold any of them, as for a question in plain words
};

// Reads `text`, whatever it holds:
//
//   query = all { "OR" all }              loosest
//   all   = near { ["AND"] near }         words side by side mean AND
//   near  = part { "NEAR/k" part }        at most k words apart, in either order; k is 1 or more
//   part  = ("NOT" | "-") part | "(" query ")" | '"' words '"' | word ["*" | "~" | "~1" | "~2"]
//
// Operators are in capitals; the "-" of NOT follows a blank or "(" and stands right before a word,
// a "(" or a quote. Words go through Transliterated and CleanWords as documents do; where that
// makes several of one (e-mail), and for the words in quotes, each must stand next to the one
// before.
//
// There are no errors. An operator that lacks an operand is a word; a parenthesis or a quote
// without its partner is left out, and so is a part without letters, together with its operator.
// Deeper than kMaxQueryDepth, parentheses are left out and NOT is a word.
//
// With kAny, words side by side mean OR, and NOT beside them leaves documents out. Among the words
// so joined, stop words are left out unless all are, and words in small letters become kForms.
//
//   Returns  nothing if no letters are left.
std::optional<Query> ParseQuery(std::string_view text, SideBySide side_by_side = SideBySide::kAll);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_QUERY_H_
