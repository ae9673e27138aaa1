// SPDX-License-Identifier: GPL-3.0-or-later
// Queries that a program builds: kestan::search::SearchQuery.
#ifndef KESTAN_SEARCH_SEARCH_QUERY_H_
#define KESTAN_SEARCH_SEARCH_QUERY_H_

#include <kestan/search/export.h>

#include <memory>
#include <string_view>
#include <vector>

namespace kestan::search {

struct BuiltNode;

// A query, or a part of one, built by calls. It finds what the text finds that has the same parts
// with the operators of docs/queries.md and parentheses between them, and nothing in it is taken
// for an operator: Word("OR") is a word, and so is the one in Word("roses*"). Chains of one
// operator are one operator: And({a, And({b, c})}) is a AND b AND c.
//
// It keeps copies of the texts, and belongs to no index: how a text is cut into words is decided by
// the index that it is put to. IndexReader::CheckQuery() says whether it makes sense there.
//
// What WordsMean means for it:
//   kBest  a Word stands for its other forms too, where a word of a text outside quotes does. All
//          is required. The text finds the same with the same scores, with two exceptions. Where no
//          document matches, words of it that no blank parts (foo,bar, and all of a script without
//          blanks) fall back on documents with some of them; a built query falls back on nothing.
//          And of words side by side, those that say little are not required; in a Word of several
//          words they are.
//   kAll   words are taken as they are written. The text finds the same with the same scores.
//   kAny   as kBest, but of a Word of several words any is enough. Beside OR, a text leaves out
//          stop words, excludes what is under NOT, and takes words of a script without blanks
//          apart; Or finds what any of its operands finds.
//
// Never changes, so that any number of threads may use one. A copy costs as much as one of a
// std::shared_ptr.
class KESTAN_SEARCH_EXPORT SearchQuery {
 public:
  // A word. With punctuation inside (e-mail) it is what it is in a text outside quotes: words in a
  // row. With blanks inside it is several words, all of which documents must have.
  static SearchQuery Word(std::string_view word) noexcept;

  // Every word that begins with `prefix`. Of several words the last is the prefix: "pre-fix" is
  // what pre-fix* is in a text.
  static SearchQuery Prefix(std::string_view prefix) noexcept;

  // The words of `text` as they are written, one right after the other.
  static SearchQuery Phrase(std::string_view text) noexcept;

  // `left` and `right` at most `distance_words` words apart (1 to INT_MAX), in either order. If
  // `left` is a Near too, this is a chain: each part is within its distance from the one before.
  static SearchQuery Near(SearchQuery left, SearchQuery right, unsigned distance_words) noexcept;

  // What all of `operands` find; at least one.
  static SearchQuery And(std::vector<SearchQuery> operands) noexcept;

  // What any of `operands` finds; at least one.
  static SearchQuery Or(std::vector<SearchQuery> operands) noexcept;

  // All documents but those that `operand` finds.
  static SearchQuery Not(SearchQuery operand) noexcept;

  // There is no moving, so that there is no query that holds nothing.
  SearchQuery(const SearchQuery& other) noexcept;
  SearchQuery& operator=(const SearchQuery& other) noexcept;
  ~SearchQuery();

 private:
  friend struct BuiltNode;
  explicit SearchQuery(std::shared_ptr<const BuiltNode> node) noexcept;

  std::shared_ptr<const BuiltNode> node_;  // null: there was no memory to build it
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SEARCH_QUERY_H_
