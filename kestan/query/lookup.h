// SPDX-License-Identifier: GPL-3.0-or-later
// From a word to its result set.
#ifndef KESTAN_QUERY_LOOKUP_H_
#define KESTAN_QUERY_LOOKUP_H_

#include <kestan/query/result_set.h>
#include <kestan/storage/database.h>

#include <optional>
#include <string_view>

namespace kestan {

// Finds the documents that hold `word`, byte for byte. A document's score is how often it does, and
// 1 in an index without positions.
//   Returns  no set if the index has no such word, its record cannot be read or no file is open.
std::optional<ResultSet> FindWord(Database& store, std::string_view word, bool with_positions);

}  // namespace kestan

#endif  // KESTAN_QUERY_LOOKUP_H_
