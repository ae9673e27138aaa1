// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/copy.h>

#include <memory>
#include <vector>

#include "search/index/caught.h"
#include "search/index/merging/merge_policy.h"
#include "search/index/merging/merger.h"
#include "search/index/opened_index.h"
#include "search/upkeep/merge_progress.h"
#include "search/upkeep/staging_folder.h"

namespace kestan::search {
namespace {

using SegmentPointer = std::shared_ptr<const Segment>;
using Positions = std::vector<std::size_t>;

std::uint64_t BytesOf(const Manifest& manifest) {
  std::uint64_t bytes = manifest.Encode().size();
  for (const SegmentInfo& info : manifest.segments) {
    bytes += info.segment.bytes + info.terms.bytes + info.table.bytes + info.edits.bytes;
  }
  return bytes;
}

std::uint64_t BytesOfSegments(const Manifest& manifest, const std::vector<Positions>& groups) {
  std::uint64_t bytes = 0;
  for (const Positions& group : groups) {
    for (const std::size_t position : group) bytes += manifest.segments[position].segment.bytes;
  }
  return bytes;
}

// Puts `merged` in the place of a group of segments, as a writer does.
void Replace(const Positions& group, const SegmentInfo& merged, Manifest* manifest) {
  std::vector<SegmentInfo>& segments = manifest->segments;
  for (std::size_t i = group.size(); i-- > 0;) {
    segments.erase(segments.begin() + static_cast<std::ptrdiff_t>(group[i]));
  }
  if (merged.documents > 0) {
    segments.insert(segments.begin() + static_cast<std::ptrdiff_t>(group[0]), merged);
    ++manifest->next_segment;
  }
  ++manifest->generation;
}

Result<CompactionMeasure> Measure(const std::string& path, const UpkeepProgress& progress) {
  const Result<OpenedIndex> index = OpenIndex(path);
  if (!index.ok()) return index.status();
  if (!index->identity.empty()) {
    return Status(StatusCode::kInvalidArgument, "it is no folder of an index", path);
  }
  StagingFolder temporary;
  Status status = temporary.CreateTemporary();
  if (!status.ok()) return status;
  Manifest manifest = index->manifest;
  const std::vector<Positions> groups = ChooseCompaction(manifest.segments);
  MergeProgress merging(progress, BytesOfSegments(manifest, groups));
  for (auto group = groups.rbegin(); group != groups.rend(); ++group) {
    std::vector<SegmentPointer> sources;
    for (const std::size_t position : *group) sources.push_back(index->segments[position]);
    const Result<SegmentInfo> merged =
        MergeSegments(sources, temporary.path(), manifest.next_segment, merging.Advance());
    if (!merged.ok()) return merged.status();
    if (merged->documents > 0) temporary.RemoveSegment(merged->number);
    Replace(*group, *merged, &manifest);
  }
  CompactionMeasure measure;
  measure.bytes_before = index->bytes;
  measure.bytes_after = BytesOf(manifest);
  measure.segments_before = index->segments.size();
  measure.segments_after = manifest.segments.size();
  return measure;
}

}  // namespace

Result<CompactionMeasure> MeasureCompaction(const std::string& path,
                                            const UpkeepProgress& progress) {
  return Caught(path, [&] { return Measure(WithoutSlashes(path), progress); });
}

}  // namespace kestan::search
