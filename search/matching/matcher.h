// SPDX-License-Identifier: GPL-3.0-or-later
// From a query and a segment to the documents that match.
#ifndef KESTAN_SEARCH_MATCHING_MATCHER_H_
#define KESTAN_SEARCH_MATCHING_MATCHER_H_

#include <kestan/search/status.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "search/matching/operators/matches.h"
#include "search/query/query.h"
#include "search/segment/segment.h"
#include "search/vocabulary/stem.h"

namespace kestan::search {

using Found = std::shared_ptr<const Occurrences>;

// Evaluates queries in one segment, an operator a file (operators/):
//
//   a word       its postings; what stands for several words: their union, counts added up
//   AND          the documents of all operands; counts: the least of them
//   OR           those of any; counts added up
//   NOT          the living documents without the operand's; each counts once
//   NEAR/k       both, at most k positions apart in either order, but not in the same place; the
//                count is the number of positions of the last operand that match; so are the
//                positions
//   "in quotes"  each word one position after the word before
//
// Operands of AND and OR that are equal count once, and optional ones decide nothing: there must be
// others. Where AND and OR stand under NEAR, their
// positions are those of all operands; NOT is near everything. Positions are compared as they are
// stored: nothing is near or after what stands beyond position 65535. In a segment without
// positions, NEAR and quotes mean AND.
//
// What a word finds is kept, so that each posting record is read once. One thread at a time.
class Matcher {
 public:
  // Borrows both. `language` is that of the words; null for words without other forms.
  explicit Matcher(const Segment& segment, const Language* language = DefaultLanguage())
      : segment_(segment), stemmer_(language) {}
  Matcher(const Matcher&) = delete;
  Matcher& operator=(const Matcher&) = delete;

  // Finds the documents that match `query`, with all that is needed of them or more.
  //   Returns  never null; after an error, which status() tells, what was found is not complete.
  Found Find(const Query& query, Need need);

  // The first error; kDamaged, or kSystem for word forms without libstemmer.
  const Status& status() const { return status_; }

  // Returns the terms that `leaf`, a query without operands that was evaluated, stands for: those
  // that a living document of the segment holds, in order of their bytes.
  const std::vector<std::string>& TermsOf(const Query& leaf) const;

  const Segment& segment() const { return segment_; }

 private:
  struct Known {
    Need need = Need::kCodes;
    Found found;
    std::vector<std::string> terms;  // of a query without operands
  };
  struct Less {
    bool operator()(const Query& left, const Query& right) const {
      return QueryLess()(&left, &right);
    }
  };

  Found FindAnd(const Query& query, Need need);
  Found FindOr(const Query& query, Need need);
  Found FindNear(const Query& query, Need need);
  Found FindPhrase(const Query& query, Need need);
  Occurrences FindLeaf(const Query& leaf, Need need, std::vector<std::string>* terms);

  const Segment& segment_;
  Stemmer stemmer_;
  Status status_;
  std::map<Query, Known, Less> known_;  // the distance of the node itself, of NEAR above it, is 0
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_MATCHING_MATCHER_H_
