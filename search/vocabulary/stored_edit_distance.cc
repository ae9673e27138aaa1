// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/vocabulary/stored_edit_distance.h"

#include "search/text/analyzer/word_encoding.h"
#include "search/text/utf8.h"

namespace kestan::search {
namespace {

bool IsInAscii(std::string_view word) { return FindNonAscii(word, 0) == word.size(); }

}  // namespace

StoredEditDistance::StoredEditDistance(std::string_view word, int limit)
    : is_ascii_(IsInAscii(word)), bytes_(word, limit), letters_(CharactersOf(word), limit) {}

int StoredEditDistance::To(std::string_view other) {
  if (is_ascii_ && IsInAscii(other)) return bytes_.To(other);
  return letters_.To(CharactersOf(other));
}

}  // namespace kestan::search
