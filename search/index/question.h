// SPDX-License-Identifier: GPL-3.0-or-later
// Putting a query to a snapshot: what words side by side mean, and what is said about it.
#ifndef KESTAN_SEARCH_INDEX_QUESTION_H_
#define KESTAN_SEARCH_INDEX_QUESTION_H_

#include <kestan/search/index_reader.h>
#include <kestan/search/search_query.h>
#include <kestan/search/status.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "search/ranking/ranked_search.h"
#include "search/segment/snapshot.h"

namespace kestan::search {

// What a query found.
struct Answer {
  RankedDocuments found;
  std::vector<std::string> notes;        // as in SearchResults
  std::vector<std::string> suggestions;  // as in SearchResults
};

// Answers `text` as `options.words` says. With kBest, documents that hold all words answer; if
// there are none, those that hold some. The more words a question has, the fewer documents hold
// them all, and by chance rather than because they answer it. So a question in plain words
// (IsQuestion()) is answered by both: first the documents that hold all words, then those that hold
// some, and a note says how many hold all. Stop words of a query count only where it has no others;
// notes name them, and words that are common, ignored or cut.
// With a filter, a blank text finds all documents that pass it. A query that was built by calls is
// answered by the documents that match it, and by no others.
//   Returns  kDamaged; kInvalidQuery for a text with mistakes if `options.strict`; of a built query
//            what Lowered() returns, too.
Result<Answer> Ask(std::string_view text, const Snapshot& snapshot, const SearchOptions& options);
Result<Answer> Ask(const SearchQuery& query, const Snapshot& snapshot,
                   const SearchOptions& options);

// Returns all documents that answer the query, by segments, which come in no order and may come
// twice, with the scores that Ask() gives them without a limit. `options.limit` counts for nothing.
//   Returns  errors as Ask() does.
Result<std::vector<ScoredDocuments>> AllAnswers(std::string_view text, const Snapshot& snapshot,
                                                const SearchOptions& options);
Result<std::vector<ScoredDocuments>> AllAnswers(const SearchQuery& query, const Snapshot& snapshot,
                                                const SearchOptions& options);

// Returns how many documents answer the query.
//   Returns  errors as Ask() does.
Result<std::uint64_t> CountAnswers(std::string_view text, const Snapshot& snapshot,
                                   const SearchOptions& options);
Result<std::uint64_t> CountAnswers(const SearchQuery& query, const Snapshot& snapshot,
                                   const SearchOptions& options);

// Explains the query that found the last of the documents which answer the query.
//   Returns  errors as Ask() does.
Result<Explanation> ExplainAnswer(std::string_view text, const Snapshot& snapshot,
                                  const SearchOptions& options);
Result<Explanation> ExplainAnswer(const SearchQuery& query, const Snapshot& snapshot,
                                  const SearchOptions& options);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_QUESTION_H_
