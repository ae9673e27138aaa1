// SPDX-License-Identifier: GPL-3.0-or-later
// How far apart two words are.
#ifndef KESTAN_TESTS_SEARCH_VOCABULARY_EDIT_DISTANCE_H_
#define KESTAN_TESTS_SEARCH_VOCABULARY_EDIT_DISTANCE_H_

#include <string_view>

namespace kestan::search {

// Returns how many edits turn `left` into `right` if they are at most `limit`, else limit + 1. An
// edit adds, drops or replaces a letter, or swaps two neighbours; no letter is edited twice.
int BoundedEditDistance(std::string_view left, std::string_view right, int limit);

}  // namespace kestan::search

#endif  // KESTAN_TESTS_SEARCH_VOCABULARY_EDIT_DISTANCE_H_
