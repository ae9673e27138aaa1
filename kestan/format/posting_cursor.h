// Reading the bytes of a posting record.
#ifndef KESTAN_FORMAT_POSTING_CURSOR_H_
#define KESTAN_FORMAT_POSTING_CURSOR_H_

#include <kestan/format/posting.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace kestan {

// Goes through the postings of a record, once, in the order in which they were added. Where the
// record is damaged, a count of positions that runs past the end is cut to those that are there,
// and an odd last byte is ignored. Copying a cursor copies its place.
//
//   for (PostingCursor cursor(record, true); cursor.Next();) Use(cursor.code());
class PostingCursor {
 public:
  // Has no postings.
  PostingCursor() = default;

  // Borrows the bytes of `record`, and never reads outside them. Stands before the first posting.
  PostingCursor(std::string_view record, bool with_positions)
      : next_(record.data()),
        end_(record.data() + record.size() / kUnit * kUnit),
        with_positions_(with_positions) {}

  // Goes to the next posting.
  //   Returns  false, with the cursor where it was, if there is none.
  bool Next() {
    if (next_ == end_) return false;
    posting_ = next_;
    next_ += kUnit;
    if (with_positions_ && next_ != end_) {
      const std::size_t count = *EncodedPositions::Iterator(next_);
      next_ += kUnit;
      positions_ = {next_, std::min(count, static_cast<std::size_t>(end_ - next_) / kUnit)};
      next_ += positions_.size() * kUnit;
    } else {
      positions_ = {};
    }
    return true;
  }

  // Of the posting that Next() went to.
  Code code() const { return *EncodedPositions::Iterator(posting_); }

  // Those that the record holds; none in a record without positions.
  EncodedPositions positions() const { return positions_; }

  // All bytes of the posting.
  std::string_view bytes() const { return {posting_, static_cast<std::size_t>(next_ - posting_)}; }

 private:
  static constexpr std::size_t kUnit = sizeof(Position);
  static_assert(sizeof(Code) == kUnit);

  const char* posting_ = nullptr;  // where it begins
  const char* next_ = nullptr;     // where it ends
  const char* end_ = nullptr;
  bool with_positions_ = false;
  EncodedPositions positions_;
};

}  // namespace kestan

#endif  // KESTAN_FORMAT_POSTING_CURSOR_H_
