// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/alike_files.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>

#include "search/files/output_file.h"

namespace kestan::search {

Status CheckAlikeFiles(const std::string& folder, const Manifest& manifest,
                       const std::function<bool(const SegmentInfo& info)>& is_known) {
  std::unordered_map<std::uint64_t, std::size_t> counts;  // of files, by size
  for (const SegmentInfo& info : manifest.segments) ++counts[info.segment.bytes];
  if (counts.size() == manifest.segments.size()) return {};
  for (const SegmentInfo& info : manifest.segments) {
    if (counts[info.segment.bytes] == 1 || is_known(info)) continue;
    Status status = VerifyFile(folder + "/" + SegmentFile(info), info.segment);
    if (!status.ok()) return status;
  }
  return {};
}

}  // namespace kestan::search
