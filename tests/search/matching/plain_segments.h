// SPDX-License-Identifier: GPL-3.0-or-later
// Segments of documents that a test writes down.
#ifndef KESTAN_TESTS_SEARCH_MATCHING_PLAIN_SEGMENTS_H_
#define KESTAN_TESTS_SEARCH_MATCHING_PLAIN_SEGMENTS_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "search/segment/segment.h"
#include "search/segment/snapshot.h"
#include "tests/support/temp_dir.h"

namespace kestan_tests {

struct DocumentOfWords {
  std::string name;
  std::vector<std::string> words;
  bool is_removed = false;
  std::string new_name = "";  // "": the name it was added with
};

// Returns a document of the words in `text`, which blanks separate.
DocumentOfWords Plain(const std::string& name, const std::string& text);

// The terms of one word of a document: itself and, if it has capitals, in lower case.
std::vector<std::string> TermsOfWord(const std::string& word);

// The position of the word number `index`, counted from 0.
kestan::Position PositionOfWord(std::size_t index);

// Writes segments into a directory of its own, and opens them.
class PlainSegments {
 public:
  // Writes `documents` as one more segment, with removals and renames as edits.
  std::shared_ptr<const kestan::search::Segment> Add(const std::vector<DocumentOfWords>& documents,
                                                     bool with_positions = true);

  // The same with terms and posting records as they are handed in, for documents "1", "2", ... of
  // ten words each.
  struct Record {
    std::string term;
    std::uint32_t documents = 0;
    std::string bytes;
  };
  std::shared_ptr<const kestan::search::Segment> AddRecords(std::size_t documents,
                                                            const std::vector<Record>& records);

  // All segments added so far.
  const kestan::search::Snapshot& snapshot() const { return snapshot_; }

 private:
  std::shared_ptr<const kestan::search::Segment> Opened(
      const kestan::search::SegmentInfo& info, const std::vector<DocumentOfWords>& documents,
      bool with_positions);

  TempDir directory_;
  std::uint64_t next_number_ = 1;
  kestan::search::Snapshot snapshot_;
};

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SEARCH_MATCHING_PLAIN_SEGMENTS_H_
