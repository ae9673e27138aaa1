#include "search/index/opened_index.h"

#include <algorithm>
#include <utility>

namespace kestan::search {
namespace {

// A file is missing where a writer has just replaced the manifest, or where it was lost. So often
// it is taken for the first.
constexpr int kMostAttempts = 100;

const Segment* SegmentIn(const OpenedIndex* opened, std::uint64_t number) {
  if (opened == nullptr) return nullptr;
  for (const auto& segment : opened->segments) {
    if (segment->info().number == number) return segment.get();
  }
  return nullptr;
}

Result<OpenedIndex> OpenManifest(const std::string& folder, Manifest manifest,
                                 const OpenedIndex* previous) {
  OpenedIndex opened;
  opened.folder = folder;
  opened.manifest = std::move(manifest);
  opened.bytes = opened.manifest.Encode().size();
  for (const SegmentInfo& info : opened.manifest.segments) {
    auto segment = Segment::Open(folder, info, opened.manifest.with_positions,
                                 SegmentIn(previous, info.number));
    if (!segment.ok()) return segment.status();
    opened.segments.push_back(std::move(*segment));
    opened.bytes += info.segment.bytes + info.terms.bytes + info.table.bytes + info.edits.bytes;
  }
  return opened;
}

}  // namespace

Result<OpenedIndex> OpenIndex(const std::string& folder, const OpenedIndex* previous) {
  for (int attempt = 1;; ++attempt) {
    auto manifest = ReadManifest(folder);
    if (!manifest.ok()) return manifest.status();
    const std::uint64_t generation = manifest->generation;
    auto opened = OpenManifest(folder, std::move(*manifest), previous);
    if (opened.ok() || opened.status().code() != StatusCode::kNotFound) return opened;
    const auto now = ReadManifest(folder);
    if (!now.ok()) return now.status();
    if (now->generation == generation || attempt == kMostAttempts) {
      return Status(StatusCode::kDamaged, "a file of the index is missing", opened.status().file());
    }
  }
}

}  // namespace kestan::search
