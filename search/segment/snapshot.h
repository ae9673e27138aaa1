// SPDX-License-Identifier: GPL-3.0-or-later
// The segments of one state of an index.
#ifndef KESTAN_SEARCH_SEGMENT_SNAPSHOT_H_
#define KESTAN_SEARCH_SEGMENT_SNAPSHOT_H_

#include <cstdint>
#include <memory>
#include <vector>

#include "search/segment/segment.h"
#include "search/text/language.h"
#include "search/text/text_rules.h"

namespace kestan::search {

// What is searched together: the segments of one index, or of several. Never changes.
struct Snapshot {
  std::vector<std::shared_ptr<const Segment>> segments;
  std::vector<std::size_t> index_of_segment;   // which of the opened indexes each belongs to
  TextRules rules = TextRules::kAsciiLetters;  // by which queries are read
  std::vector<const Language*> languages;      // of each segment, as LanguageOf() gives them

  // Returns the language of the words of the segment `i`; null if words have no other forms there.
  const Language* LanguageOf(std::size_t i) const {
    return i < languages.size() ? languages[i] : DefaultLanguage();
  }

  std::uint64_t living_documents() const;
  std::uint64_t living_words() const;
  bool with_positions() const;  // all segments have them
};

// A document of a snapshot. Ordered by segment, then by code.
struct DocumentId {
  std::uint32_t segment = 0;
  Code code = 0;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SEGMENT_SNAPSHOT_H_
