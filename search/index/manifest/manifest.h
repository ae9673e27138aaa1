// SPDX-License-Identifier: GPL-3.0-or-later
// MANIFEST: which files make an index. docs/index-folder.md shows one.
#ifndef KESTAN_SEARCH_INDEX_MANIFEST_MANIFEST_H_
#define KESTAN_SEARCH_INDEX_MANIFEST_MANIFEST_H_

#include <kestan/search/status.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "search/segment/segment_info.h"

namespace kestan::search {

// No manifest is larger, or names more segments.
constexpr std::uint64_t kMaxManifestBytes = std::uint64_t{64} << 20;
constexpr std::size_t kMaxSegments = 100'000;

// One state of an index. It is a small text file, and replaced as a whole by each commit.
struct Manifest {
  std::uint64_t generation = 0;    // one more with each commit
  std::uint64_t next_segment = 1;  // the number of the next segment
  bool with_positions = true;
  std::vector<SegmentInfo> segments;  // in the order in which their documents were added
  std::map<std::string, std::string, std::less<>> properties;

  // Returns the text of the file: lines that a person can read, the checksum of all others last.
  std::string Encode() const;

  // Reads what Encode() made. Whatever differs from that in a single byte is no manifest.
  //   Returns  kDamaged; kVersion for the file of another version.
  static Result<Manifest> Decode(std::string_view bytes);
};

std::string ManifestPath(const std::string& folder);

// Returns whether there is a manifest in `folder`, so that the folder is an index.
bool IsIndexFolder(const std::string& folder);

// Reads the manifest of the index in `folder`.
//   Returns  kNotFound if there is none; kDamaged, kVersion, kSystem.
Result<Manifest> ReadManifest(const std::string& folder);

// Says what it means that the manifest of `folder` is missing.
//   Returns  kDamaged if there are files of segments; kNotFound if there are none.
Status StatusOfMissingManifest(const std::string& folder);

// Replaces the manifest: the moment of a commit. After an error either manifest may be there.
// `needed` and `syncing` are those of ReplaceFile().
//   Returns  kInvalidArgument for one that is too large, kSystem.
Status WriteManifest(const std::string& folder, const Manifest& manifest,
                     const std::vector<std::string>& needed = {}, Syncing syncing = Syncing::kNow);

// Returns the paths of the files that `next` names and `committed` does not.
std::vector<std::string> NewFiles(const std::string& folder, const Manifest& committed,
                                  const Manifest& next);

// Is in a folder while an index comes to be there that has not got its name yet.
inline constexpr const char* kStagingMarker = "staging.lock";

// Removes the files in `folder` that are named like those of segments, but that `manifest` does not
// name: what a writer left that did not end well. Other files stay.
//   Returns  kSystem with the first file that cannot be removed.
Status RemoveUnnamedFiles(const std::string& folder, const Manifest& manifest);

// Removes the files of a segment that no manifest names, as far as they can be removed.
void RemoveSegmentFiles(const std::string& folder, const SegmentInfo& info);

// Returns whether a file is named like one of a segment: "17.terms", "17-3.edits".
bool IsSegmentFileName(std::string_view name);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_MANIFEST_MANIFEST_H_
