// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/query/operators/negate.h>

#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>

namespace kestan {

std::optional<ResultSet> Negate(Database& store, const DBDatum& reusable_codes,
                                const ResultSet* set) {
  CodeSet excluded;
  CollectCodes(reusable_codes, &excluded);
  if (set != nullptr) {
    for (const auto& document : set->documents()) excluded.set(document.code);
  }
  const DBDatumPtr counter = Fetch(store, kCounterKey);
  if (counter.ptr == nullptr) return std::nullopt;
  ResultSet others;
  others.AddAllBut(excluded, DecodeCounter(*counter.ptr));
  return others;
}

}  // namespace kestan
