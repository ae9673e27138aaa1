// SPDX-License-Identifier: GPL-3.0-or-later
// Result sets: the documents that matched, each with a score and the positions where it matched.
#ifndef KESTAN_QUERY_RESULT_SET_H_
#define KESTAN_QUERY_RESULT_SET_H_

#include <kestan/format/id_list.h>
#include <kestan/format/posting.h>
#include <kestan/query/matches.h>
#include <kestan/storage/memory/memory.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace kestan {

// Documents in ascending order of their codes. All positions of a set share one block of units: for
// each document the number of its positions and then these, as in a posting record.
class ResultSet {
 public:
  using Document = Matches::Entry;

  // Reserves memory for about so many documents, and units of all of them together.
  void Reserve(std::size_t documents, std::size_t units) {
    documents_.reserve(documents);
    units_.reserve(units);
  }

  // Adds a document with space for `count` positions. Unless codes come in ascending order, Sort()
  // must follow the last one.
  //   Returns  where the positions go. Valid until the next call.
  Position* Add(Code code, Score score, std::uint16_t count) {
    const std::size_t first = units_.size();
    AddTaken(code, score, first);
    units_.resize(first + 1 + count);
    units_[first] = count;
    return units_.data() + first + 1;
  }

  // Adds a document with the positions given, at most 65535.
  void Add(Code code, Score score, Positions positions) {
    std::copy(positions.begin(), positions.end(),
              Add(code, score, static_cast<std::uint16_t>(positions.count)));
  }

  // Takes `units` as the block of a set that has none yet, and adds a document whose count and
  // positions stand in it already, from `first` on. Documents may share them.
  void TakeUnits(UnfilledVector<std::uint16_t> units) { units_ = std::move(units); }
  void AddTaken(Code code, Score score, std::size_t first) {
    documents_.push_back({code, score, static_cast<std::uint32_t>(first)});
  }

  // Add documents whose positions are not known, to a set that has no others: the document `code`,
  // or all from 1 to `top` but those of `excluded`, with score 0.
  void AddUnplaced(Code code, Score score);
  void AddAllBut(const CodeSet& excluded, Code top);

  // Puts the documents in order. Of those with one code only the first that was added stays.
  void Sort();

  const UnfilledVector<Document>& documents() const { return documents_; }

  // Returns a view of the whole set. Valid until it changes.
  Matches View() const { return {documents_.data(), documents_.size(), units_.data()}; }

  // Gives back memory reserved for documents that did not come, if it is more than half.
  void Trim() {
    if (documents_.size() < documents_.capacity() / 2) documents_.shrink_to_fit();
  }

  // Returns how large the block of positions is.
  std::size_t units() const { return units_.size(); }

  // Returns the positions of a document of this set. Valid until the next Add().
  Positions PositionsOf(const Document& document) const {
    const std::uint16_t* const count = units_.data() + document.first;
    return {count + 1, *count};
  }

 private:
  UnfilledVector<Document> documents_;
  UnfilledVector<std::uint16_t> units_;
};

}  // namespace kestan

#endif  // KESTAN_QUERY_RESULT_SET_H_
