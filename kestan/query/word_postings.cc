// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/query/word_postings.h>

#include <kestan/format/id_list.h>
#include <kestan/format/posting_list.h>
#include <kestan/storage/memory/memory.h>
#include <kestan/storage/owned_datum.h>

#include <algorithm>
#include <utility>

namespace kestan {
namespace {

bool AreInOrder(const DBDatum& record, bool with_positions) {
  PostingReader reader(record, with_positions);
  Posting posting;
  int previous = -1;
  while (reader.Next(&posting)) {
    if (posting.code <= previous) return false;
    previous = posting.code;
  }
  return true;
}

// Copies the postings in order of their codes. Of several with one code, the first stays. A last
// posting that counts more positions than it has gets their true number, for others may follow now.
DBDatumPtr InOrder(const DBDatum& record, bool with_positions) {
  Vector<Posting> postings;
  PostingReader reader(record, with_positions);
  for (Posting posting; reader.Next(&posting);) postings.push_back(posting);
  std::stable_sort(postings.begin(), postings.end(), [](const Posting& left, const Posting& right) {
    return left.code < right.code;
  });

  String bytes;
  int previous = -1;
  for (const Posting& posting : postings) {
    if (posting.code == previous) continue;
    previous = posting.code;
    const EncodedPositions positions = PositionsOf(record, posting);
    EncodePosting(posting.code, with_positions ? &positions : nullptr, &bytes);
  }
  return CopyDatum({bytes.data(), static_cast<std::uint32_t>(bytes.size())});
}

}  // namespace

WordPostings::WordPostings(DBDatumPtr record, bool with_positions)
    : record_(std::move(record)), with_positions_(with_positions) {}

std::size_t WordPostings::CountDocuments() const {
  return record_.ptr != nullptr ? CountPostings(*record_.ptr, with_positions_) : 0;
}

WordPostings::Cursor::Cursor(const WordPostings& postings)
    : record_(postings.record_), with_positions_(postings.with_positions_) {
  if (record_.ptr == nullptr || AreInOrder(*record_.ptr, with_positions_)) return;
  record_ = InOrder(*record_.ptr, with_positions_);
}

bool WordPostings::Cursor::Next() {
  if (record_.ptr == nullptr) return false;
  const DBDatum& record = *record_.ptr;
  PostingReader reader(record, with_positions_, next_unit_);
  Posting posting;
  if (!reader.Next(&posting)) return false;
  next_unit_ = posting.end_unit();
  code_ = posting.code;
  positions_ = PositionsOf(record, posting);
  return true;
}

}  // namespace kestan
