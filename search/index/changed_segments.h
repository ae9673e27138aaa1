// SPDX-License-Identifier: GPL-3.0-or-later
// The segments of an index with the changes that are not committed yet.
#ifndef KESTAN_SEARCH_INDEX_CHANGED_SEGMENTS_H_
#define KESTAN_SEARCH_INDEX_CHANGED_SEGMENTS_H_

#include <kestan/postings.h>
#include <kestan/search/index_writer.h>
#include <kestan/search/status.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "search/index/inverting/segment_maker.h"
#include "search/index/manifest/manifest.h"
#include "search/index/name_filter.h"
#include "search/segment/segment.h"

namespace kestan::search {

// What an IndexWriter knows of segments that are written. Use it from one thread.
class ChangedSegments {
 public:
  struct Place {
    std::size_t segment;
    Code code;
  };

  // Opens the segments of `manifest` in `folder`, in place of those that were open.
  Status Open(const std::string& folder, const Manifest& manifest);

  // Finds a living document, with one look-up a segment, most of them in a filter of its names.
  //   Returns  nothing if there is none; kDamaged where that cannot be known.
  Result<std::optional<Place>> Find(std::string_view name);

  // Each changes a document that Find() found.
  void Remove(Place place);
  void Rename(Place place, std::string_view name, std::uint32_t now);
  void SetField(Place place, DocumentField field, std::string_view value);

  // Adds a segment that no manifest names yet.
  Status Add(WrittenSegment written);

  bool HasChanges() const;

  // Returns whether any document is left.
  bool HasDocuments() const;

  // Writes the edits of all segments that have changed, as files of their own.
  //   Returns  the segments as the next manifest is to name them, those without living documents
  //            left out. Nothing has changed here until Open() takes that manifest.
  Result<std::vector<SegmentInfo>> WriteEdits();

  // The segments as they were committed.
  const std::vector<std::shared_ptr<const Segment>>& segments() const { return segments_; }

 private:
  struct Changes {
    bool is_new = false;
    std::optional<Edits> edits;  // all of the segment; none: as committed
  };

  const Edits& EditsOf(std::size_t segment) const;
  Edits& ChangeEditsOf(std::size_t segment);
  Result<SegmentInfo> WriteEditsOf(std::size_t segment) const;

  std::string folder_;
  bool with_positions_ = true;
  std::vector<std::shared_ptr<const Segment>> segments_;
  std::vector<Changes> changes_;     // of each segment
  std::vector<NameFilter> filters_;  // of each segment
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_CHANGED_SEGMENTS_H_
