// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/analyzer.h>
#include <kestan/search/repair.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

#include <unistd.h>

#include "search/files/descriptor.h"
#include "search/files/folder_names.h"
#include "search/files/writer_lock.h"
#include "search/index/caught.h"
#include "search/index/manifest/analyzer_version.h"
#include "search/index/manifest/manifest.h"
#include "search/index/manifest/manifest_text.h"
#include "search/upkeep/loose_segment.h"
#include "search/upkeep/repairing/repair_items.h"
#include "search/upkeep/repairing/repaired_file.h"
#include "search/upkeep/repairing/repaired_segments.h"
#include "search/upkeep/staging_folder.h"

namespace kestan::search {
namespace {

// ---- Folders ----

using EditNumbers = std::set<std::uint64_t, std::greater<>>;

// Finds the index files of a folder by their numbers, with the numbers of their edits. Segments
// whose other files alone are there are lost, and named for that.
Result<std::vector<DamagedSegment>> FindSegments(const std::string& folder) {
  const Result<std::vector<std::string>> names = NamesIn(folder);
  if (!names.ok()) return names.status();
  std::map<std::uint64_t, EditNumbers> found;
  for (const std::string& name : *names) {
    LineReader reader(name);
    std::uint64_t number = 0;
    std::uint64_t edits = 0;
    if (!IsSegmentFileName(name) || !reader.ReadNumber(&number) || number == 0) continue;
    EditNumbers& numbers = found[number];
    if (reader.Skip("-") && reader.ReadNumber(&edits) && edits != 0) numbers.insert(edits);
  }
  std::vector<DamagedSegment> segments;
  for (const auto& [number, edits] : found) {
    DamagedSegment segment;
    segment.info.number = number;
    segment.is_in_manifest = false;
    segment.edit_numbers = {edits.begin(), edits.end()};
    segments.push_back(std::move(segment));
  }
  return segments;
}

class FolderRepairer {
 public:
  FolderRepairer(std::string folder, std::string target, RepairItems* items)
      : folder_(std::move(folder)),
        target_(std::move(target)),
        items_(*items),
        segments_(folder_, target_, items) {}

  Status Repair() {
    Status status = FindState();
    if (!status.ok()) return status;
    std::optional<bool> with_positions;
    if (has_manifest_) with_positions = manifest_.with_positions;
    manifest_.segments.clear();
    for (const DamagedSegment& damaged : found_) {
      manifest_.next_segment = std::max(manifest_.next_segment, damaged.info.number + 1);
      const auto taken = segments_.Take(damaged, &with_positions);
      if (!taken.ok()) return taken.status();
      if (*taken) manifest_.segments.push_back(**taken);
    }
    if (manifest_.segments.empty() && !has_manifest_) {
      return {StatusCode::kDamaged, "nothing of an index could be read", folder_};
    }
    manifest_.with_positions = with_positions.value_or(true);
    status = LeaveOutTwins();
    return status.ok() ? WriteManifest(target_, manifest_, {}, Syncing::kLater) : status;
  }

 private:
  Status FindState() {
    Result<Manifest> manifest = ReadManifest(folder_);
    has_manifest_ = manifest.ok();
    if (has_manifest_) {
      manifest_ = std::move(*manifest);
      ++manifest_.generation;
      for (const SegmentInfo& info : manifest_.segments) found_.push_back({info, true, {}});
      return {};
    }
    const StatusCode code = manifest.status().code();
    if (code != StatusCode::kNotFound && code != StatusCode::kDamaged) return manifest.status();
    Result<std::vector<DamagedSegment>> found = FindSegments(folder_);
    if (!found.ok()) return found.status();
    if (found->empty()) return NoIndexAt(folder_);
    found_ = std::move(*found);
    manifest_.properties.emplace(kAnalyzerProperty, Analyzer::kVersion);  // as far as is known
    // No index had so many commits, so readers see that it is another state.
    manifest_.generation = static_cast<std::uint64_t>(std::time(nullptr));
    const std::string path = ManifestPath(folder_);
    items_.SetDamaged();
    items_.Add(RepairKind::kManifestRebuilt, path, "",
               "made from the segments, in the order of their numbers");
    items_.Add(RepairKind::kPropertiesLost, path, "", "properties are lost");
    return {};
  }

  // The newest first: of a name that lives twice, its document stays.
  Status LeaveOutTwins() {
    std::vector<SegmentInfo> kept;
    for (auto info = manifest_.segments.rbegin(); info != manifest_.segments.rend(); ++info) {
      const Result<bool> lives = segments_.LeaveOutTwins(&*info, manifest_.with_positions);
      if (!lives.ok()) return lives.status();
      if (*lives) kept.push_back(*info);
      if (!*lives) RemoveSegmentFiles(target_, *info);
    }
    std::reverse(kept.begin(), kept.end());
    manifest_.segments = std::move(kept);
    return {};
  }

  const std::string folder_;
  const std::string target_;
  RepairItems& items_;
  RepairedSegments segments_;
  bool has_manifest_ = false;
  Manifest manifest_;
  std::vector<DamagedSegment> found_;
};

// Keeps writers away meanwhile, as far as this process may. A folder without a lock has none.
Result<std::optional<WriterLock>> LockFolder(const std::string& folder) {
  const std::string path = folder + "/writer.lock";
  if (access(path.c_str(), F_OK) != 0) return std::optional<WriterLock>();
  Result<WriterLock> lock = WriterLock::Take(path);
  if (lock.ok()) return std::optional<WriterLock>(std::move(*lock));
  if (lock.status().code() == StatusCode::kBusy) return lock.status();
  return std::optional<WriterLock>();
}

Status RepairFolder(const std::string& folder, const std::string& new_path, RepairItems* items) {
  const auto lock = LockFolder(folder);
  if (!lock.ok()) return lock.status();
  StagingFolder staging;
  Status status = staging.Create(new_path, folder);
  if (status.ok()) status = FolderRepairer(folder, staging.path(), items).Repair();
  return status.ok() ? staging.PublishFolder() : status;
}

// ---- Files ----

Status RepairFile(const std::string& path, const std::string& new_path, RepairItems* items) {
  StagingFolder staging;
  Status status = staging.Create(new_path, path);
  if (!status.ok()) return status;
  const std::string made = LooseFile(staging.path());
  RepairResult result;
  status = RepairIndexFile(
      path, made, [&](const Finding& finding) { items->Add(path, finding); }, &result);
  if (!status.ok()) return status;
  items->AddResult(result);
  return staging.PublishFile(made);
}

Result<RepairReport> Repair(const std::string& path, const std::string& new_path,
                            const TakeRepairItem& take) {
  std::error_code error;
  const std::filesystem::file_status found = std::filesystem::status(path, error);
  if (found.type() == std::filesystem::file_type::not_found) {
    return NoIndexAt(path);
  }
  RepairItems items(take);
  const bool is_folder = std::filesystem::is_directory(found);
  try {
    Status status =
        is_folder ? RepairFolder(path, new_path, &items) : RepairFile(path, new_path, &items);
    if (!status.ok()) return status;
  } catch (const RepairStopped&) {
    return Status(StatusCode::kInterrupted, "the repair was interrupted", path);
  }
  return items.report();
}

}  // namespace

Result<RepairReport> RepairIndex(const std::string& path, const std::string& new_path,
                                 const TakeRepairItem& take) {
  return Caught(path, [&] { return Repair(WithoutSlashes(path), WithoutSlashes(new_path), take); });
}

}  // namespace kestan::search
