// SPDX-License-Identifier: GPL-3.0-or-later
// The keys of an index file that are none of words.
#ifndef KESTAN_SEARCH_SEGMENT_RECORD_KEYS_H_
#define KESTAN_SEARCH_SEGMENT_RECORD_KEYS_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "search/segment/document_table.h"

namespace kestan::search {

inline constexpr std::size_t kFamilyBytes = 2;  // what keys have before a name

// What the keys of texts begin with, by DocumentField.
inline constexpr std::array<std::string_view, kDocumentFields> kFieldFamilies = {"t-", "s-", "u-"};

// Returns whether the second byte is the mark of families. Words such as "e-mail" have it too.
inline bool HasFamilyMark(std::string_view key) {
  return key.size() >= kFamilyBytes && key[1] == '-';
}

// Returns whether a file has one record of this key, which no word can have.
inline bool IsSingleKey(std::string_view key) {
  constexpr std::array<std::string_view, 4> kKeys = {"g-code", "g-avail", "g-deleted", "g-opts"};
  return std::find(kKeys.begin(), kKeys.end(), key) != kKeys.end();
}

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SEGMENT_RECORD_KEYS_H_
