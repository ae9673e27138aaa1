// SPDX-License-Identifier: GPL-3.0-or-later
// The operators of queries on what their operands have found in one segment, each in a file of its
// own.
#ifndef KESTAN_SEARCH_MATCHING_OPERATORS_OPERATORS_H_
#define KESTAN_SEARCH_MATCHING_OPERATORS_OPERATORS_H_

#include <kestan/search/status.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "search/matching/operators/matches.h"
#include "search/segment/segment.h"

namespace kestan::search {

using Found = std::shared_ptr<const Occurrences>;

// Reads the postings of one term, without removed documents.
//   Returns  kDamaged if codes do not ascend within those of the segment, or a posting is cut.
Result<Occurrences> ReadTerm(const TermPostings& postings, const Segment& segment, Need need);

// Finds the documents of any operand; counts are added up, positions gathered.
class OccurrenceUnion {
 public:
  // For documents of a segment of `documents`.
  OccurrenceUnion(std::size_t documents, Need need);

  // Adds an operand. What `found` lacks of the need is taken for one occurrence anywhere.
  void Add(const Occurrences& found);

  // Returns the union. Nothing may be added after it.
  Occurrences Take();

 private:
  void AddCodes(const Occurrences& found);
  std::vector<Code> TakeCodes() const;
  void Gather(Occurrences* found);

  const Need need_;
  std::vector<std::uint64_t> is_found_;  // where codes are all that is needed: a bit a code
  std::size_t added_ = 0;                // codes
  std::vector<std::uint32_t> counts_;    // else: by code; 0: not found
  std::vector<Code> gathered_codes_;     // of each posting added, in their order
  std::vector<std::uint32_t> gathered_counts_;
  std::vector<Position> gathered_;
};

// Finds the documents of all operands, beginning with the rarest; the least of the counts, and the
// positions of all.
Occurrences Intersect(const std::vector<Found>& operands, Need need);

// Returns the codes that all operands have, beginning with the rarest.
std::vector<Code> CommonCodes(const std::vector<Found>& operands);

// Finds the living documents that are not in `operand`: once, anywhere.
Occurrences Subtract(const Segment& segment, const Occurrences& operand, Need need);

// Leaves those of `excluded` out of `*codes`, which ascend.
void Exclude(const Occurrences& excluded, std::vector<Code>* codes);

// Finds the documents in which each operand is at most distances[i] positions from the one before.
// All operands have positions. distances[0] means nothing.
Occurrences Near(const std::vector<Found>& operands, const std::vector<int>& distances, Need need);

// Finds the documents in which each operand is one position after the one before.
Occurrences Phrase(const std::vector<Found>& operands, Need need);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_MATCHING_OPERATORS_OPERATORS_H_
