// SPDX-License-Identifier: GPL-3.0-or-later
// How far the stored words of an index are from one.
#ifndef KESTAN_SEARCH_VOCABULARY_STORED_EDIT_DISTANCE_H_
#define KESTAN_SEARCH_VOCABULARY_STORED_EDIT_DISTANCE_H_

#include <string>
#include <string_view>

#include "search/vocabulary/sorted_edit_distance.h"

namespace kestan::search {

// Counts edits of letters, however many bytes these are stored in. Words in ASCII are compared as
// bytes, which are their letters, and take least time in order of these.
class StoredEditDistance {
 public:
  // Copies `word`, as it is stored. `limit` is 0 or more.
  StoredEditDistance(std::string_view word, int limit);

  // Returns the distance to `other` if it is at most the limit, else more.
  int To(std::string_view other);

 private:
  const bool is_ascii_;
  SortedEditDistance<char> bytes_;
  SortedEditDistance<char32_t> letters_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_VOCABULARY_STORED_EDIT_DISTANCE_H_
