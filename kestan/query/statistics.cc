#include <kestan/query/statistics.h>

#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>
#include <kestan/format/posting_list.h>
#include <kestan/format/record_kind.h>
#include <kestan/storage/walk/record_iterator.h>

#include <cstdint>

namespace kestan {
namespace {

constexpr int kFlushPeriod = 101;  // records; it keeps the cache small during a walk

// Visits every record of the store and lists what `select` appends to the text. Fetches each value,
// wanted or not: a later Put under its key goes by whether the record is cached.
template <typename Select>
char* ListRecords(Database& store, ScratchBuffer* text, Select select) {
  ScratchText lines(text);
  WalkOptions options;
  options.flush_policy = FlushPolicy::Every(kFlushPeriod);
  for (RecordIterator record(store, options); record.Valid(); record.Next()) {
    select(record.key(), *record.value().ptr, &lines);
  }
  return lines.Finish();
}

// Cuts off the fraction and keeps the low 32 bits. What fits no 64-bit integer, and NaN, becomes
// -2^63, whose low 32 bits are 0.
std::uint32_t Truncate(double number) {
  constexpr double kLimit = 9223372036854775808.0;  // 2^63
  if (!(number >= -kLimit && number < kLimit)) return 0;
  return static_cast<std::uint32_t>(static_cast<std::int64_t>(number));
}

bool IsShare(double bound) { return 0 <= bound && bound < 1; }

// A share of the documents, rounded half up; or a count, which may come as 2.9999 for 3.
std::uint32_t BoundOf(double bound, std::uint32_t documents) {
  return IsShare(bound) ? Truncate(documents * bound + 0.5) : Truncate(bound + 0.001);
}

}  // namespace

char* ListDocuments(Database& store, ScratchBuffer* text) {
  if (Fetch(store, kCounterKey).ptr == nullptr) return nullptr;
  return ListRecords(store, text, [](const DBDatum& key, const DBDatum&, ScratchText* lines) {
    if (!IsOfFamily(BytesOf(key), kDocumentFamily)) return;
    lines->AppendLine(BytesOf(key).substr(kDocumentFamily.size()), key.size);
  });
}

char* ListCommonWords(Database& store, const DBDatum& reusable_codes, bool with_positions,
                      FrequencyRange range, ScratchBuffer* text) {
  DBDatumPtr counter = Fetch(store, kCounterKey);
  if (counter.ptr == nullptr) return nullptr;
  const auto documents =
      static_cast<std::uint32_t>(DecodeCounter(*counter.ptr) - CountCodes(reusable_codes));
  counter.Free();  // a flush during the walk must not find it held, or it would be written twice
  const std::uint32_t lower = BoundOf(range.low, documents);
  const std::uint32_t upper = range.high >= 0 ? BoundOf(range.high, documents) : documents;
  return ListRecords(store, text,
                     [=](const DBDatum& key, const DBDatum& value, ScratchText* lines) {
                       if (IsSystemKey(key)) return;
                       const std::size_t count = CountPostings(value, with_positions);
                       if (lower <= count && count <= upper) {
                         lines->AppendLine(BytesOf(key), std::size_t{key.size} + 2);
                       }
                     });
}

}  // namespace kestan
