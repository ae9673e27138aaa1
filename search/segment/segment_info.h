// SPDX-License-Identifier: GPL-3.0-or-later
// What MANIFEST says of a segment.
#ifndef KESTAN_SEARCH_SEGMENT_SEGMENT_INFO_H_
#define KESTAN_SEARCH_SEGMENT_SEGMENT_INFO_H_

#include <cstdint>
#include <optional>
#include <string>

#include "search/files/output_file.h"

namespace kestan::search {

// A segment is written once and never changed. Its files are called by its number, which no other
// segment of the index ever has: 17.segment is an index file, 17.terms the term dictionary,
// 17.documents the document table; 17-3.edits the edits of the third commit that edited it.
struct SegmentInfo {
  std::uint64_t number = 0;
  std::uint32_t documents = 0;  // removed ones among them
  std::uint32_t removed = 0;
  FileSummary segment;
  FileSummary terms;
  FileSummary table;
  std::uint64_t edit_number = 0;  // 0: there are no edits
  FileSummary edits;

  // Words that its index file has no room for, because too many have their hash. Known when the
  // segment was just written; MANIFEST does not say it.
  std::uint64_t words_left_out = 0;
};

std::string SegmentFile(const SegmentInfo& info);
std::string TermsFile(const SegmentInfo& info);
std::string TableFile(const SegmentInfo& info);
std::string EditsFile(const SegmentInfo& info);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SEGMENT_SEGMENT_INFO_H_
