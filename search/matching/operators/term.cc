// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/postings.h>

#include <limits>
#include <string_view>

#include "search/matching/operators/operators.h"

namespace kestan::search {
namespace {

// Reads postings into `*found`, which has room for all that there can be.
//   Returns  how many living documents there are; more than that room if the record is damaged.
template <bool kWithStarts>
std::size_t ReadPostings(std::string_view record, const Segment& segment, std::size_t room,
                         Occurrences* found) {
  const bool has_removed = segment.edits().removed_count() > 0;
  const std::size_t last_code = segment.size();
  Code* const codes = found->codes.data();
  std::uint32_t* const counts = found->counts.data();
  std::uint32_t* const starts = found->starts.data();
  std::size_t size = 0;
  std::size_t read = 0;
  Code previous = 0;
  WholePostingCursor cursor(record);
  for (; read < room && cursor.Next(); ++read) {
    const Code code = cursor.code();
    if (code <= previous || code > last_code) return room + 1;
    previous = code;
    if (has_removed && segment.IsRemoved(code)) continue;
    const EncodedPositions positions = cursor.positions();
    codes[size] = code;
    counts[size] = static_cast<std::uint32_t>(positions.size());
    if (kWithStarts) {
      starts[size] = static_cast<std::uint32_t>(positions.bytes().data() - record.data());
    }
    ++size;
  }
  return read == room && cursor.AtEnd() ? size : room + 1;
}

// The same for a record of codes alone; each counts once.
std::size_t ReadCodes(std::string_view record, const Segment& segment, std::size_t room,
                      Occurrences* found) {
  std::size_t size = 0;
  std::size_t read = 0;
  Code previous = 0;
  for (PostingCursor cursor(record, false); cursor.Next(); ++read) {
    const Code code = cursor.code();
    if (code <= previous || code > segment.size() || read == room) return room + 1;
    previous = code;
    if (segment.IsRemoved(code)) continue;
    found->codes[size] = code;
    found->counts[size] = 1;
    ++size;
  }
  return read == room ? size : room + 1;
}

}  // namespace

Result<Occurrences> ReadTerm(const TermPostings& postings, const Segment& segment, Need need) {
  Occurrences found;
  const std::string_view record = postings.record.view();
  const std::size_t room = postings.documents;
  const bool with_starts = need == Need::kPositions && segment.with_positions();
  if (room <= segment.size() && record.size() <= std::numeric_limits<std::uint32_t>::max()) {
    found.codes.resize(room);
    found.counts.resize(room);
    if (with_starts) found.starts.resize(room);
    const auto read = with_starts                ? ReadPostings<true>
                      : segment.with_positions() ? ReadPostings<false>
                                                 : ReadCodes;
    const std::size_t size = read(record, segment, room, &found);
    if (size <= room) {
      found.codes.resize(size);
      found.counts.resize(size);
      if (with_starts) {
        found.starts.resize(size);
        found.record = postings.record;
      }
      return found;
    }
  }
  return Status(StatusCode::kDamaged, "a posting record contradicts the documents of its segment",
                SegmentFile(segment.info()));
}

}  // namespace kestan::search
