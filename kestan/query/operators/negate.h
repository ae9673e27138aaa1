// SPDX-License-Identifier: GPL-3.0-or-later
// NOT.
#ifndef KESTAN_QUERY_OPERATORS_NEGATE_H_
#define KESTAN_QUERY_OPERATORS_NEGATE_H_

#include <kestan/query/result_set.h>
#include <kestan/storage/database.h>
#include <kestan/storage/dbdatum.h>

#include <optional>

namespace kestan {

// Finds all documents, removed ones among them, that are not in `set`, which may be null; all with
// score 0. `reusable_codes` is the value of "g-avail", whose codes no document has.
//   Returns  no set if the index never had a document, or its counter cannot be read.
std::optional<ResultSet> Negate(Database& store, const DBDatum& reusable_codes,
                                const ResultSet* set);

}  // namespace kestan

#endif  // KESTAN_QUERY_OPERATORS_NEGATE_H_
