#include <kestan/postings.h>

#include <limits>
#include <string_view>

#include "search/matching/operators/operators.h"

namespace kestan::search {
namespace {

constexpr std::size_t kBytesBeforePositions = sizeof(Code) + sizeof(Position);

// Returns whether the posting has all the positions that it says, and any.
bool IsWhole(const PostingCursor& cursor) {
  const std::string_view bytes = cursor.bytes();
  if (bytes.size() <= kBytesBeforePositions) return false;
  const std::size_t stated = EncodedPositions(bytes.data() + sizeof(Code), 1)[0];
  return cursor.positions().size() == stated;
}

// Reads postings into `*found`, which has room for all that there can be.
//   Returns  how many living documents there are; more than that room if the record is damaged.
template <bool kWithPositions, bool kWithStarts>
std::size_t ReadPostings(std::string_view record, const Segment& segment, std::size_t room,
                         Occurrences* found) {
  const bool has_removed = segment.edits().removed_count() > 0;
  const std::size_t last_code = segment.size();
  std::size_t size = 0;
  std::size_t read = 0;
  Code previous = 0;
  for (PostingCursor cursor(record, kWithPositions); cursor.Next(); ++read) {
    const Code code = cursor.code();
    if (code <= previous || code > last_code || read == room) return room + 1;
    if (kWithPositions && !IsWhole(cursor)) return room + 1;
    previous = code;
    if (has_removed && segment.IsRemoved(code)) continue;
    found->codes[size] = code;
    found->counts[size] =
        kWithPositions ? static_cast<std::uint32_t>(cursor.positions().size()) : 1;
    if (kWithStarts) {
      const auto start = cursor.bytes().data() + kBytesBeforePositions - record.data();
      found->starts[size] = static_cast<std::uint32_t>(start);
    }
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
    const auto read = with_starts                ? ReadPostings<true, true>
                      : segment.with_positions() ? ReadPostings<true, false>
                                                 : ReadPostings<false, false>;
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
