// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>
#include <kestan/maintenance/documents.h>
#include <kestan/maintenance/documents/contents.h>
#include <kestan/maintenance/documents/places.h>
#include <kestan/maintenance/documents/word_order.h>
#include <kestan/storage/memory/memory.h>
#include <kestan/storage/walk/flush_policy.h>

#include <algorithm>
#include <array>
#include <utility>

namespace kestan {
namespace {

class DocumentGiver {
 public:
  DocumentGiver(Database& store, const Contents& contents, const TakeDocument& take)
      : store_(store), contents_(contents), take_(take), order_(contents), flush_(store) {}

  // Gives all documents, as many at once as have no more than `most` places, or else one.
  int Give(const PlaceCounts& counts, std::size_t most) {
    const Document* const end = contents_.documents().data() + contents_.documents().size();
    for (const Document* first = contents_.documents().data(); first != end;) {
      std::size_t places = counts[first->code];
      const Document* next = first + 1;
      while (next != end && places + counts[next->code] <= most) places += counts[next++->code];
      if (const int error = GiveBatch(first, next, places); error != 0) return error;
      first = next;
    }
    return 0;
  }

 private:
  int GiveBatch(const Document* first, const Document* end, std::size_t places) {
    codes_.reset();
    for (const Document* document = first; document != end; ++document) codes_.set(document->code);
    const int error = FindPlaces(store_, contents_, codes_, places, &places_);
    if (error != 0) return error;
    for (const Document* document = first; document != end; ++document) {
      if (const int failure = GiveOne(*document); failure != 0) return failure;
    }
    return 0;
  }

  int GiveOne(const Document& document) {
    const auto begin = std::lower_bound(places_.begin(), places_.end(), Place{document.code} << 48);
    const auto end = std::find_if(begin, places_.end(),
                                  [&](Place place) { return CodeOf(place) != document.code; });
    const Place* const places = places_.data() + (begin - places_.begin());
    const Vector<PlacedWord>& words = order_.Restore(places, places + (end - begin));
    StoredDocument given;
    given.name = document.name;
    given.code = document.code;
    given.timestamp = document.timestamp;
    given.words = words.data();
    given.word_count = words.size();
    given.has_positions = contents_.has_positions();
    return GiveWithSideRecords(&given);
  }

  int GiveWithSideRecords(StoredDocument* given) {
    const std::array families{std::pair{kTitleFamily, &given->title},
                              std::pair{kSummaryFamily, &given->summary},
                              std::pair{kUserFamily, &given->user}};
    std::array<DBDatumPtr, families.size()> records;
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < families.size(); ++i) {
      const auto& [family, text] = families[i];
      if (const int error = ReadRecord(store_, ItemKey(family, given->name), &records[i]);
          error != 0) {
        return error;
      }
      const DBDatum* const record = records[i].ptr;
      if (record == nullptr) continue;
      *text = std::string_view(record->data, record->size);
      bytes += record->size;
    }
    take_(*given);
    records = {};
    flush_.Note(bytes);
    return 0;
  }

  Database& store_;
  const Contents& contents_;
  const TakeDocument& take_;
  WordOrder order_;
  PeriodicFlush flush_;
  CodeSet codes_;  // of the documents that are given now
  Vector<Place> places_;
};

}  // namespace

StoreError ReadDocuments(Database& store, const TakeDocument& take, std::size_t places_at_once) {
  if (store.Flush() == -1) return StoreError::kNotOpen;
  Contents contents;
  if (const int error = contents.Gather(store); error != 0) return StoreError{error};
  PlaceCounts counts;
  if (const int error = CountPlaces(store, contents, &counts); error != 0) return StoreError{error};
  return StoreError{DocumentGiver(store, contents, take).Give(counts, places_at_once)};
}

}  // namespace kestan
