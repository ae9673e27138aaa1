// SPDX-License-Identifier: GPL-3.0-or-later
// What a SearchQuery is made of.
#ifndef KESTAN_SEARCH_QUERY_BUILT_BUILT_NODE_H_
#define KESTAN_SEARCH_QUERY_BUILT_BUILT_NODE_H_

#include <kestan/search/search_query.h>

#include <string>
#include <vector>

namespace kestan::search {

// One call that built a query, as it was made: nothing is checked. Never changes.
struct BuiltNode {
  enum class Kind {
    kWord,  // `text`; no operands, like the next two
    kPrefix,
    kPhrase,
    kNear,  // two operands
    kAnd,   // any number of operands
    kOr,    // any number of operands
    kNot,   // one operand
  };
  Kind kind = Kind::kWord;
  std::string text;
  std::vector<SearchQuery> operands;
  unsigned distance_words = 0;              // of kNear
  mutable const BuiltNode* next = nullptr;  // to be destroyed after it

  // Returns what `query` was built by last; null if there was no memory for it.
  static const BuiltNode* Of(const SearchQuery& query) { return query.node_.get(); }

  // Returns a query of `node`.
  //   Throws   std::bad_alloc.
  static SearchQuery Built(BuiltNode node);

  // Returns the query that there was no memory for.
  static SearchQuery NotBuilt() noexcept { return SearchQuery(nullptr); }
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_BUILT_BUILT_NODE_H_
