// SPDX-License-Identifier: GPL-3.0-or-later
// An index folder that is open for reading.
#ifndef KESTAN_SEARCH_INDEX_OPENED_INDEX_H_
#define KESTAN_SEARCH_INDEX_OPENED_INDEX_H_

#include <kestan/search/status.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "search/index/manifest/manifest.h"
#include "search/segment/segment.h"
#include "search/text/text_rules.h"

namespace kestan::search {

// One state of an index, with its segments open. Never changes.
struct OpenedIndex {
  std::string folder;  // or the path of an index file of class Kestan, which is its one segment
  Manifest manifest;
  std::vector<std::shared_ptr<const Segment>> segments;  // as in the manifest
  TextRules rules = TextRules::kAsciiLetters;            // by which words are made of text
  std::uint64_t bytes = 0;                               // of all files that the manifest names
  std::string identity;  // of an index file: differs once it was replaced or changed
};

// Opens the newest state of the index in `folder`. A writer may replace the manifest and remove
// files meanwhile; then it begins again. Segments that `previous` has too are shared; it may be
// null.
// An index file of class Kestan has a manifest without properties, and a new generation when the
// file was replaced. While it is open, other processes cannot change it: see Segment.
//   Returns  kNotFound where there is no index; kDamaged, kVersion, kSystem.
Result<OpenedIndex> OpenIndex(const std::string& folder, const OpenedIndex* previous = nullptr);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_OPENED_INDEX_H_
