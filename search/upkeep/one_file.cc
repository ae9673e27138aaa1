// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/index_builder.h>
#include <kestan/search/convert.h>

#include <cerrno>

#include "search/files/output_file.h"
#include "search/index/caught.h"
#include "search/index/merging/merger.h"
#include "search/index/opened_index.h"
#include "search/segment/plain_index.h"
#include "search/upkeep/merge_progress.h"
#include "search/upkeep/staging_folder.h"

namespace kestan::search {
namespace {

// Writes the index file of an index without documents.
Status WriteEmpty(const std::string& path, bool with_positions) {
  IndexBuilder builder;
  IndexBuilder::Options options;
  options.option_flags = with_positions ? 0 : kFlagNoPositions;
  StoreError error = builder.Open(path.c_str(), options);
  if (error == StoreError::kNone) error = builder.Finish();
  return error == StoreError::kNone ? Status() : StatusOfIndexFile(error, errno, path);
}

Status WriteOneFile(const std::string& folder, const std::string& file,
                    const UpkeepProgress& progress) {
  const Result<OpenedIndex> index = OpenIndex(folder);
  if (!index.ok()) return index.status();
  std::uint64_t documents = 0;
  for (const auto& segment : index->segments) documents += segment->living_documents();
  if (documents > kMaxCode) {
    return {StatusCode::kInvalidArgument,
            "it has " + std::to_string(documents) + " documents; one index file holds 65535",
            folder};
  }
  StagingFolder staging;
  Status status = staging.Create(file, folder);
  if (!status.ok()) return status;
  SegmentInfo info;
  info.number = 1;
  const std::string made = staging.path() + "/" + SegmentFile(info);
  if (documents == 0) {
    status = WriteEmpty(made, index->manifest.with_positions);
    return status.ok() ? staging.PublishFile(made) : status;
  }
  MergeProgress merging(progress, index->bytes);
  const Result<SegmentInfo> merged =
      MergeSegments(index->segments, staging.path(), info.number, merging.Advance());
  return merged.ok() ? staging.PublishFile(made) : merged.status();
}

}  // namespace

Status WriteIndexFile(const std::string& folder, const std::string& file,
                      const UpkeepProgress& progress) {
  return Caught(folder, [&] { return WriteOneFile(WithoutSlashes(folder), file, progress); });
}

}  // namespace kestan::search
