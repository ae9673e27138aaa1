// MANIFEST: which files make an index. docs/index-folder.md shows one.
#ifndef KESTAN_SEARCH_INDEX_MANIFEST_H_
#define KESTAN_SEARCH_INDEX_MANIFEST_H_

#include <kestan/search/status.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "search/segment/segment_info.h"

namespace kestan::search {

// One state of an index. It is a small text file, and replaced as a whole by each commit.
struct Manifest {
  std::uint64_t generation = 0;    // one more with each commit
  std::uint64_t next_segment = 1;  // the number of the next segment
  bool with_positions = true;
  std::vector<SegmentInfo> segments;  // in the order in which their documents were added
  std::map<std::string, std::string, std::less<>> properties;

  std::string Encode() const;

  // Reads what Encode() made.
  //   Returns  kDamaged, kVersion.
  static Result<Manifest> Decode(std::string_view bytes);
};

std::string ManifestPath(const std::string& folder);

// Returns whether there is a manifest in `folder`, so that the folder is an index.
bool IsIndexFolder(const std::string& folder);

// Reads the manifest of the index in `folder`.
//   Returns  kNotFound if there is none; kDamaged, kVersion, kSystem.
Result<Manifest> ReadManifest(const std::string& folder);

// Replaces the manifest: the moment of a commit.
Status WriteManifest(const std::string& folder, const Manifest& manifest);

// Removes the files in `folder` that are named like those of segments, but that `manifest` does not
// name: what a writer left that did not end well. Other files stay.
Status RemoveUnnamedFiles(const std::string& folder, const Manifest& manifest);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_MANIFEST_H_
