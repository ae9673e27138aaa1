// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/documents/word_order.h>

#include <algorithm>

namespace kestan {

const Vector<PlacedWord>& WordOrder::Restore(const Place* begin, const Place* end) {
  words_.clear();
  while (begin != end) {
    const Position position = PositionOf(*begin);
    const Place* const next =
        std::find_if(begin, end, [=](Place place) { return PositionOf(place) != position; });
    CountWords(begin, next);
    DropFoldedForms();
    for (const Counted& each : here_) {
      words_.insert(words_.end(), each.count, {contents_.words()[each.word], position});
    }
    begin = next;
  }
  return words_;
}

void WordOrder::CountWords(const Place* begin, const Place* end) {
  here_.clear();
  for (const Place* place = begin; place != end; ++place) {
    const WordId word = WordOf(*place);
    if (here_.empty() || here_.back().word != word) here_.push_back({word, 0});
    ++here_.back().count;
  }
}

// A word with capitals accounts for one occurrence of its folded form, recorded with it. What is
// left of the folded form stood in the text itself, in another round of the positions.
void WordOrder::DropFoldedForms() {
  for (const Counted& each : here_) {
    const WordId folded = contents_.FoldedWord(each.word);
    if (folded == kNoWord) continue;
    const auto found =
        std::lower_bound(here_.begin(), here_.end(), folded,
                         [](const Counted& left, WordId right) { return left.word < right; });
    if (found == here_.end() || found->word != folded) continue;
    found->count -= std::min(found->count, each.count);
  }
}

}  // namespace kestan
