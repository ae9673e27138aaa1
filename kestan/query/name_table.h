// SPDX-License-Identifier: GPL-3.0-or-later
// The names of documents by code, side by side in memory.
#ifndef KESTAN_QUERY_NAME_TABLE_H_
#define KESTAN_QUERY_NAME_TABLE_H_

#include <kestan/format/posting.h>
#include <kestan/storage/database.h>
#include <kestan/storage/memory/memory.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestan {

// A listing asks for one name a match, in ascending order of codes. The table keeps what the store
// answered until the store changes: 512 KiB once it is used, and the names.
class NameTable {
 public:
  // Forgets all names if `store` has changed since they were found. Nothing may change a name in
  // place without another change of the store before the next call.
  void Refresh(const Database& store);

  // Finds the name of the document `code`. Uses `*held` for names too long to be kept.
  //   Returns  the name, null data if the store has none. Valid until the next call, while `*held`
  //            holds what it does.
  std::string_view Find(Database& store, Code code, DBDatumPtr* held) {
    if (!places_.empty() && places_[code].size != kUnknown) return At(places_[code]);
    return Load(store, code, held);
  }

 private:
  static constexpr std::uint16_t kUnknown = 0xffff;

  struct Place {
    std::uint32_t start = 0;
    std::uint16_t size = kUnknown;
  };

  std::string_view At(Place place) const { return {names_.data() + place.start, place.size}; }
  std::string_view Load(Database& store, Code code, DBDatumPtr* held);

  Vector<Place> places_;  // by code; empty until the first name is asked for
  String names_;
  std::uint64_t changes_ = 0;  // of the store when the names were found
};

}  // namespace kestan

#endif  // KESTAN_QUERY_NAME_TABLE_H_
