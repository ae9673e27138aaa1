// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/query/collection_lists.h>

#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>
#include <kestan/format/posting_list.h>
#include <kestan/format/record_kind.h>
#include <kestan/storage/walk/record_iterator.h>

#include <cstdint>

namespace kestan {
namespace {

constexpr int kFlushPeriod = 101;  // records; it keeps the cache small during a walk

// Calls `visit` with the key and the value of each record until it returns false. Fetches each
// value, wanted or not: a later Put under its key goes by whether the record is cached.
//   Returns  0, or gdbm's number of the error that ended the walk.
template <typename Visit>
int ForEachRecord(Database& store, Visit visit) {
  WalkOptions options;
  options.flush_policy = FlushPolicy::Every(kFlushPeriod);
  RecordIterator record(store, options);
  for (; record.Valid(); record.Next()) {
    if (!visit(record.key(), *record.value().ptr)) return 0;
  }
  if (record.all_read()) return 0;
  return record.walk_error() != 0 ? record.walk_error() : store.FileError();
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

struct FrequencyBounds {
  std::uint32_t lower;
  std::uint32_t upper;
};

FrequencyBounds BoundsOf(FrequencyRange range, std::uint32_t documents) {
  return {BoundOf(range.low, documents),
          range.high >= 0 ? BoundOf(range.high, documents) : documents};
}

}  // namespace

char* ListDocumentNames(Database& store, ScratchBuffer* text) {
  if (Fetch(store, kCounterKey).ptr == nullptr) return nullptr;
  ScratchText lines(text);
  ForEachRecord(store, [&lines](const DBDatum& key, const DBDatum&) {
    if (IsOfFamily(BytesOf(key), kDocumentFamily)) {
      lines.AppendLine(BytesOf(key).substr(kDocumentFamily.size()), key.size);
    }
    return true;
  });
  return lines.Finish();
}

int ForEachCommonWord(
    Database& store, const DBDatum& reusable_codes, bool with_positions, FrequencyRange range,
    const std::function<bool(std::string_view word, std::size_t documents)>& visit) {
  DBDatumPtr counter = Fetch(store, kCounterKey);
  if (counter.ptr == nullptr) return 0;
  const auto documents =
      static_cast<std::uint32_t>(DecodeCounter(*counter.ptr) - CountCodes(reusable_codes));
  counter.Free();  // a flush during the walk must not find it held, or it would be written twice
  const auto [lower, upper] = BoundsOf(range, documents);
  return ForEachRecord(store,
                       [&, lower = lower, upper = upper](const DBDatum& key, const DBDatum& value) {
                         if (IsSystemKey(key)) return true;
                         const std::size_t count = CountPostings(value, with_positions);
                         return count < lower || upper < count || visit(BytesOf(key), count);
                       });
}

char* ListCommonWords(Database& store, const DBDatum& reusable_codes, bool with_positions,
                      FrequencyRange range, ScratchBuffer* text) {
  if (Fetch(store, kCounterKey).ptr == nullptr) return nullptr;
  ScratchText lines(text);
  ForEachCommonWord(store, reusable_codes, with_positions, range,
                    [&lines](std::string_view word, std::size_t) {
                      lines.AppendLine(word, word.size() + 2);
                      return true;
                    });
  return lines.Finish();
}

}  // namespace kestan
