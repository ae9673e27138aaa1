// SPDX-License-Identifier: GPL-3.0-or-later
// Posting records that may be damaged, one posting after the other.
#ifndef KESTAN_SEARCH_UPKEEP_REPAIRING_SALVAGED_POSTINGS_H_
#define KESTAN_SEARCH_UPKEEP_REPAIRING_SALVAGED_POSTINGS_H_

#include <kestan/postings.h>

#include <cstddef>
#include <string_view>
#include <vector>

namespace kestan::search {

// A posting whose positions are with those of others, in SalvagedPostings.
struct SalvagedPosting {
  Code code = 0;
  bool is_doubted = false;  // something about it or its record is wrong
  std::size_t first = 0;    // where its positions begin
  std::size_t positions = 0;
};

// Returns whether `record` has the shape of postings, of whatever codes, and a NUL, as no title or
// summary has. A check takes it for the record of a word.
bool LooksLikePostings(std::string_view record, bool with_positions);

// What can be read of one posting record: in order of codes, of which a damaged record may have one
// twice.
class SalvagedPostings {
 public:
  using Postings = std::vector<SalvagedPosting>;

  Postings::const_iterator begin() const { return postings_.begin(); }
  Postings::const_iterator end() const { return postings_.end(); }
  bool empty() const { return postings_.empty(); }

  Positions PositionsOf(const SalvagedPosting& posting) const {
    return {positions_.data() + posting.first, posting.positions};
  }

  // Reads `record`: its whole postings, up to the first that is not, of codes from 1 to `highest`.
  // A posting is doubted if its code is out of order, or its positions are; without positions it is
  // left out then. Positions of 0 are left out.
  //   Returns  whether the record is as a writer makes it, but for the order of positions.
  bool Read(std::string_view record, bool with_positions, Code highest);

  void Clear();
  void DoubtAll();

  // Adds a posting of the highest code so far, with no positions yet, and positions to the last.
  void Add(Code code, bool is_doubted);
  void AddPosition(Position position) {
    positions_.push_back(position);
    ++postings_.back().positions;
  }

 private:
  void PutInOrder(bool with_positions);

  Postings postings_;
  std::vector<Position> positions_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_UPKEEP_REPAIRING_SALVAGED_POSTINGS_H_
