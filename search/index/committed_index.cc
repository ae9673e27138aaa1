// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/committed_index.h"

#include <kestan/search/analyzer.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>

#include "search/files/descriptor.h"
#include "search/files/folder_names.h"
#include "search/files/output_file.h"
#include "search/index/manifest/analyzer_version.h"
#include "search/index/merging/merge_policy.h"
#include "search/index/merging/merger.h"

namespace kestan::search {
namespace {

constexpr const char* kLockFile = "writer.lock";
constexpr mode_t kFolderMode = 0777;  // less what the process masks out

std::string WithoutSlashes(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

std::string ParentOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return path.substr(0, std::max<std::size_t>(slash, 1));
}

// Makes the folder where there is nothing.
Status MakeFolder(const std::string& folder, bool sync) {
  if (mkdir(folder.c_str(), kFolderMode) == 0) {
    return sync ? SyncDirectory(ParentOf(folder)) : Status();
  }
  if (errno != EEXIST) return SystemError(errno, folder);
  struct stat64 information = {};
  if (stat64(folder.c_str(), &information) == 0 && S_ISDIR(information.st_mode)) return {};
  return {StatusCode::kInvalidArgument, "it is no folder of an index", folder};
}

// An index whose manifest was lost looks like a folder to make one in, and so does a folder that
// was meant for something else.
Status CheckHoldsNothing(const std::string& folder) {
  const std::string begun = ManifestPath(folder).substr(folder.size() + 1) + ".new";
  const Result<std::vector<std::string>> names = NamesIn(folder);
  if (!names.ok()) return names.status();
  for (const std::string& name : *names) {
    if (IsSegmentFileName(name)) return StatusOfMissingManifest(folder);
    if (name != kLockFile && name != begun) {
      return {StatusCode::kInvalidArgument, "the folder holds other files and no index", folder};
    }
  }
  return {};
}

}  // namespace

Result<std::unique_ptr<CommittedIndex>> CommittedIndex::Open(const std::string& path,
                                                             const WriterOptions& options) {
  const std::string folder = WithoutSlashes(path);
  if (!IsIndexFolder(folder)) {
    if (!options.create) return NoIndexAt(folder);
    Status status = MakeFolder(folder, options.sync);
    if (status.ok()) status = CheckHoldsNothing(folder);  // before the lock adds a file to it
    if (!status.ok() && !IsIndexFolder(folder)) return status;
  }
  Result<WriterLock> lock = WriterLock::Take(folder + "/" + kLockFile);
  if (!lock.ok()) return lock.status();
  const Syncing syncing = options.sync ? Syncing::kNow : Syncing::kLater;
  std::unique_ptr<CommittedIndex> index(new CommittedIndex(folder, std::move(*lock), syncing));
  Status status = IsIndexFolder(folder) ? Status() : index->Create(options.with_positions);
  if (status.ok()) status = index->Reload();
  if (!status.ok()) return status;
  return index;
}

Status CommittedIndex::Create(bool with_positions) {
  Status status = CheckHoldsNothing(folder_);
  if (!status.ok()) return status;
  Manifest manifest;
  manifest.with_positions = with_positions;
  manifest.properties.emplace(kAnalyzerProperty, Analyzer::kVersion);
  return WriteManifest(folder_, manifest, {}, syncing_);
}

std::uint64_t CommittedIndex::NextSegment() const {
  std::uint64_t number = manifest_.next_segment;
  for (const auto& segment : segments_.segments()) {
    number = std::max(number, segment->info().number + 1);
  }
  return number;
}

std::uint64_t CommittedIndex::BytesOf(const std::vector<std::size_t>& positions) const {
  std::uint64_t bytes = 0;
  for (const std::size_t position : positions) bytes += manifest_.segments[position].segment.bytes;
  return bytes;
}

Status CommittedIndex::Reload() {
  Result<Manifest> manifest = ReadManifest(folder_);
  if (!manifest.ok()) return manifest.status();
  const Result<TextRules> rules = RulesOf(folder_, *manifest);
  if (!rules.ok()) return rules.status();
  Status status = segments_.Open(folder_, *manifest);
  if (!status.ok()) return status;
  manifest_ = std::move(*manifest);
  unlink((folder_ + "/" + kStagingMarker).c_str());  // the index was named, and nothing more
  return RemoveUnnamedFiles(folder_, manifest_);
}

void CommittedIndex::RemoveFilesOfChanges() const {
  // What is committed is what the disk says, which matters after an error of Publish().
  const Result<Manifest> manifest = ReadManifest(folder_);
  // A file that stays is removed when the index is opened the next time.
  if (manifest.ok()) static_cast<void>(RemoveUnnamedFiles(folder_, *manifest));
}

Status CommittedIndex::Commit(const Properties& properties) {
  if (!segments_.HasChanges() && properties == manifest_.properties) return {};
  Result<std::vector<SegmentInfo>> infos = segments_.WriteEdits();
  if (!infos.ok()) return infos.status();
  Manifest next = manifest_;
  next.properties = properties;
  next.segments = std::move(*infos);
  return Publish(std::move(next));
}

std::vector<std::shared_ptr<const Segment>> CommittedIndex::SegmentsAt(
    const std::vector<std::size_t>& positions) const {
  std::vector<std::shared_ptr<const Segment>> segments;
  segments.reserve(positions.size());
  for (const std::size_t position : positions) segments.push_back(segments_.segments()[position]);
  return segments;
}

Status CommittedIndex::Merge(const std::vector<std::size_t>& positions,
                             const std::function<bool(std::uint64_t bytes)>& advance,
                             std::uint64_t* unreadable) {
  *unreadable = 0;
  Manifest next = manifest_;
  std::optional<std::size_t> source;
  const Result<SegmentInfo> merged =
      MergeSegments(SegmentsAt(positions), folder_, manifest_.next_segment, advance, &source);
  if (source) *unreadable = manifest_.segments[positions[*source]].number;
  if (!merged.ok()) return merged.status();
  for (std::size_t i = positions.size(); i-- > 0;) {
    next.segments.erase(next.segments.begin() + static_cast<std::ptrdiff_t>(positions[i]));
  }
  if (merged->documents > 0) {
    next.segments.insert(next.segments.begin() + static_cast<std::ptrdiff_t>(positions[0]),
                         *merged);
  }
  return Publish(std::move(next));
}

Status CommittedIndex::DropPositions(const Properties& properties,
                                     const std::function<bool(std::uint64_t bytes)>& advance) {
  Manifest next = manifest_;
  next.properties = properties;
  next.with_positions = false;
  next.segments.clear();
  for (const auto& group : GroupNeighbours(manifest_.segments)) {
    const Result<SegmentInfo> written = MergeSegments(SegmentsAt(group), folder_, next.next_segment,
                                                      advance, nullptr, WordPositions::kDropped);
    if (!written.ok()) return written.status();
    if (written->documents == 0) continue;
    next.segments.push_back(*written);
    ++next.next_segment;
  }
  return Publish(std::move(next));
}

// Makes `next` what is committed. This alone waits for the disk.
Status CommittedIndex::Publish(Manifest next) {
  ++next.generation;
  for (const SegmentInfo& info : next.segments) {
    next.next_segment = std::max(next.next_segment, info.number + 1);
  }
  Status status = WriteManifest(folder_, next, NewFiles(folder_, manifest_, next), syncing_);
  if (status.ok()) status = segments_.Open(folder_, next);
  if (!status.ok()) return status;
  manifest_ = std::move(next);
  // A file that stays is removed when the index is opened the next time.
  static_cast<void>(RemoveUnnamedFiles(folder_, manifest_));
  return {};
}

}  // namespace kestan::search
