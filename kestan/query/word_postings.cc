#include <kestan/query/word_postings.h>

#include <kestan/format/id_list.h>
#include <kestan/format/posting_list.h>
#include <kestan/storage/memory.h>
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

void AppendUnit(std::uint16_t unit, String* bytes) {
  const auto encoded = EncodeCode(unit);
  bytes->append(encoded.data(), encoded.size());
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
    AppendUnit(posting.code, &bytes);
    if (!with_positions) continue;
    AppendUnit(posting.positions, &bytes);
    const std::size_t end_unit = posting.first_unit + posting.units;
    bytes.append(record.data + (end_unit - posting.positions) * kUnitBytes,
                 posting.positions * std::size_t{kUnitBytes});
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
  next_unit_ = posting.first_unit + posting.units;
  code_ = posting.code;
  const std::size_t first_position = next_unit_ - posting.positions;
  positions_ = {record.data + first_position * kUnitBytes, posting.positions};
  return true;
}

}  // namespace kestan
