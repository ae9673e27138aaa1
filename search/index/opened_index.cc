// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/opened_index.h"

#include <sys/stat.h>

#include <algorithm>
#include <utility>

#include "search/index/alike_files.h"
#include "search/index/manifest/analyzer_version.h"

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
  const Result<TextRules> rules = RulesOf(folder, opened.manifest);
  if (!rules.ok()) return rules.status();
  opened.rules = *rules;
  opened.bytes = opened.manifest.Encode().size();
  for (const SegmentInfo& info : opened.manifest.segments) {
    auto segment = Segment::Open(folder, info, opened.manifest.with_positions,
                                 SegmentIn(previous, info.number));
    if (!segment.ok()) return segment.status();
    opened.segments.push_back(std::move(*segment));
    opened.bytes += info.segment.bytes + info.terms.bytes + info.table.bytes + info.edits.bytes;
  }
  Status status = CheckAlikeFiles(folder, opened.manifest, [previous](const SegmentInfo& info) {
    return SegmentIn(previous, info.number) != nullptr;
  });
  if (!status.ok()) return status;
  return opened;
}

// Returns what tells a file from others, and from itself as it was before a change; "" for what is
// no regular file.
std::string IdentityOf(const std::string& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return "";
  std::string identity;
  for (const auto number :
       {static_cast<std::int64_t>(status.st_dev), static_cast<std::int64_t>(status.st_ino),
        static_cast<std::int64_t>(status.st_size), static_cast<std::int64_t>(status.st_mtim.tv_sec),
        static_cast<std::int64_t>(status.st_mtim.tv_nsec)}) {
    identity += std::to_string(number) + " ";
  }
  return identity;
}

Result<OpenedIndex> OpenFileAsIndex(const std::string& path, std::string identity,
                                    const OpenedIndex* previous) {
  if (previous != nullptr && previous->identity == identity) return *previous;
  auto segment = Segment::OpenIndexFile(path);
  if (!segment.ok()) return segment.status();
  OpenedIndex opened;
  opened.folder = path;
  opened.identity = std::move(identity);
  opened.manifest.generation = previous != nullptr ? previous->manifest.generation + 1 : 1;
  opened.manifest.with_positions = (*segment)->with_positions();
  opened.manifest.segments = {(*segment)->info()};
  opened.bytes = (*segment)->info().segment.bytes;
  opened.segments = {std::move(*segment)};
  return opened;
}

}  // namespace

Result<OpenedIndex> OpenIndex(const std::string& folder, const OpenedIndex* previous) {
  std::string identity = IdentityOf(folder);
  if (!identity.empty()) return OpenFileAsIndex(folder, std::move(identity), previous);
  for (int attempt = 1;; ++attempt) {
    auto manifest = ReadManifest(folder);
    if (manifest.status().code() == StatusCode::kNotFound) return StatusOfMissingManifest(folder);
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
