// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/changed_segments.h"

#include <algorithm>
#include <utility>

#include "search/files/output_file.h"
#include "search/index/alike_files.h"

namespace kestan::search {
namespace {

std::optional<Code> FindIn(const Segment& segment, const Edits& edits, std::string_view name,
                           NameFilter* filter) {
  if (const std::optional<Code> renamed = edits.FindRenamed(name)) return renamed;
  if (!filter->MayHave(segment.table(), name)) return std::nullopt;
  const std::optional<Code> code = segment.table().Find(name);
  if (!code || edits.IsRemoved(*code)) return std::nullopt;
  const DocumentEdit* const edit = edits.EditOf(*code);
  if (edit != nullptr && edit->name) return std::nullopt;
  return code;
}

}  // namespace

Status ChangedSegments::Open(const std::string& folder, const Manifest& manifest) {
  std::vector<std::shared_ptr<const Segment>> segments;
  std::vector<NameFilter> filters(manifest.segments.size());
  for (const SegmentInfo& info : manifest.segments) {
    const auto known = std::find_if(
        segments_.begin(), segments_.end(),
        [&info](const auto& segment) { return segment->info().number == info.number; });
    auto segment = Segment::Open(folder, info, manifest.with_positions,
                                 known != segments_.end() ? known->get() : nullptr);
    if (segment.status().code() == StatusCode::kNotFound) {
      return {StatusCode::kDamaged, "a file of the index is missing", segment.status().file()};
    }
    if (!segment.ok()) return segment.status();
    if (known != segments_.end()) {
      filters[segments.size()] = filters_[static_cast<std::size_t>(known - segments_.begin())];
    }
    segments.push_back(std::move(*segment));
  }
  const auto is_known = [this](const SegmentInfo& info) {
    return std::any_of(segments_.begin(), segments_.end(), [&info](const auto& segment) {
      return segment->info().number == info.number;
    });
  };
  Status status = CheckAlikeFiles(folder, manifest, is_known);
  if (!status.ok()) return status;
  folder_ = folder;
  with_positions_ = manifest.with_positions;
  segments_ = std::move(segments);
  filters_ = std::move(filters);
  changes_.assign(segments_.size(), {});
  return {};
}

Result<std::optional<ChangedSegments::Place>> ChangedSegments::Find(std::string_view name) {
  std::optional<Place> place;
  for (std::size_t i = segments_.size(); i-- > 0 && !place;) {
    if (const auto code = FindIn(*segments_[i], EditsOf(i), name, &filters_[i])) {
      place = Place{i, *code};
    }
    Status status = segments_[i]->status();  // a name that is not read is not found
    if (!status.ok()) return status;
  }
  return place;
}

void ChangedSegments::Remove(Place place) { ChangeEditsOf(place.segment).Remove(place.code); }

void ChangedSegments::Rename(Place place, std::string_view name, std::uint32_t now) {
  ChangeEditsOf(place.segment).Rename(place.code, name, now);
}

void ChangedSegments::SetField(Place place, DocumentField field, std::string_view value) {
  ChangeEditsOf(place.segment).SetField(place.code, field, value);
}

Status ChangedSegments::Add(WrittenSegment written) {
  auto segment = Segment::Open(folder_, written.info, with_positions_);
  if (!segment.ok()) return segment.status();
  segments_.push_back(std::move(*segment));
  Changes changes;
  changes.is_new = true;
  if (!written.edits.empty()) changes.edits = std::move(written.edits);
  changes_.push_back(std::move(changes));
  filters_.emplace_back();
  return {};
}

bool ChangedSegments::HasChanges() const {
  return std::any_of(changes_.begin(), changes_.end(),
                     [](const Changes& changes) { return changes.is_new || changes.edits; });
}

bool ChangedSegments::HasDocuments() const {
  for (std::size_t i = 0; i < segments_.size(); ++i) {
    if (EditsOf(i).removed_count() < segments_[i]->size()) return true;
  }
  return false;
}

const Edits& ChangedSegments::EditsOf(std::size_t segment) const {
  const std::optional<Edits>& edits = changes_[segment].edits;
  return edits ? *edits : segments_[segment]->edits();
}

Edits& ChangedSegments::ChangeEditsOf(std::size_t segment) {
  std::optional<Edits>& edits = changes_[segment].edits;
  if (!edits) edits = segments_[segment]->edits();
  return *edits;
}

Result<std::vector<SegmentInfo>> ChangedSegments::WriteEdits() {
  std::vector<SegmentInfo> infos;
  for (std::size_t i = 0; i < segments_.size(); ++i) {
    if (EditsOf(i).removed_count() == segments_[i]->size()) continue;
    Result<SegmentInfo> info = changes_[i].edits ? WriteEditsOf(i) : segments_[i]->info();
    if (!info.ok()) return info.status();
    infos.push_back(*info);
  }
  return infos;
}

Result<SegmentInfo> ChangedSegments::WriteEditsOf(std::size_t segment) const {
  const Edits& edits = *changes_[segment].edits;
  SegmentInfo info = segments_[segment]->info();
  ++info.edit_number;
  OutputFile file;
  Status status = file.Create(folder_ + "/" + EditsFile(info));
  if (!status.ok()) return status;
  file.Write(edits.Encode());
  const Result<FileSummary> summary = file.Finish(Syncing::kLater);
  if (!summary.ok()) return summary.status();
  info.edits = *summary;
  info.removed = static_cast<std::uint32_t>(edits.removed_count());
  return info;
}

}  // namespace kestan::search
