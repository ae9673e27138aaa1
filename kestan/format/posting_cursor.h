// SPDX-License-Identifier: GPL-3.0-or-later
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

// Goes through the postings of a record with positions, and stops at one that is damaged: one
// without positions, or with more than there are.
//
//   WholePostingCursor cursor(record);
//   while (cursor.Next()) Use(cursor.code());
//   if (!cursor.AtEnd()) return Damaged();
class WholePostingCursor {
 public:
  // Borrows the bytes of `record`, and never reads outside them. Stands before the first posting.
  explicit WholePostingCursor(std::string_view record)
      : next_(record.data()), rest_(record.size()) {}

  // Goes to the next posting.
  //   Returns  false, with the cursor where it was, if there is none or it is damaged.
  bool Next() {
    if (rest_ < kBytesBefore) return false;
    const std::size_t count = *EncodedPositions::Iterator(next_ + sizeof(Code));
    const std::size_t bytes = kBytesBefore + count * sizeof(Position);
    if (count == 0 || bytes > rest_) return false;
    positions_ = {next_ + kBytesBefore, count};
    next_ += bytes;
    rest_ -= bytes;
    return true;
  }

  // Returns whether the last posting was the end of the record.
  bool AtEnd() const { return rest_ == 0; }

  // Of the posting that Next() went to.
  Code code() const {
    return *EncodedPositions::Iterator(positions_.bytes().data() - kBytesBefore);
  }
  EncodedPositions positions() const { return positions_; }

 private:
  static constexpr std::size_t kBytesBefore = sizeof(Code) + sizeof(Position);

  const char* next_;
  std::size_t rest_;  // bytes from next_ on
  EncodedPositions positions_;
};

}  // namespace kestan

#endif  // KESTAN_FORMAT_POSTING_CURSOR_H_
