// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/vocabulary/fuzzy_match.h"

#include <tuple>

namespace kestan::search {

bool IsCloser(const FuzzyMatch& left, const FuzzyMatch& right) {
  return std::tie(left.edits, right.documents, left.word) <
         std::tie(right.edits, left.documents, right.word);
}

}  // namespace kestan::search
