// SPDX-License-Identifier: GPL-3.0-or-later
// The postings of a record that are kept, with new codes.
#ifndef KESTAN_SEARCH_INDEX_MERGING_KEPT_POSTINGS_H_
#define KESTAN_SEARCH_INDEX_MERGING_KEPT_POSTINGS_H_

#include <kestan/postings.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

// Appends the postings of `record` to `*kept`: those of the documents for which `new_codes`, by
// code, has one that is not 0. Each gets that code.
//   Returns  how many; nothing, with part of them appended, where the record is damaged: a posting
//            cut short, codes out of order or past the end of `new_codes`.
std::optional<std::uint32_t> AppendKeptPostings(std::string_view record, bool with_positions,
                                                const std::vector<Code>& new_codes,
                                                std::string* kept);

// The same for a record with positions, which are left out.
std::optional<std::uint32_t> AppendKeptCodes(std::string_view record,
                                             const std::vector<Code>& new_codes, std::string* kept);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_MERGING_KEPT_POSTINGS_H_
