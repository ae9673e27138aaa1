// SPDX-License-Identifier: GPL-3.0-or-later
// Copies of an index, and what a compaction of it would give back.
#ifndef KESTAN_SEARCH_COPY_H_
#define KESTAN_SEARCH_COPY_H_

#include <kestan/search/export.h>
#include <kestan/search/status.h>
#include <kestan/search/upkeep_progress.h>

#include <cstdint>
#include <string>

namespace kestan::search {

// Copies the index folder, or the index file of class Kestan, at `path` to `new_path`, where there
// must be nothing. Of a folder, the copy is the state after one commit, whatever a writer does
// meanwhile, file by file; the checksum of each is compared on the way. Of a file, it has every
// record and no free space.
//
// All or nothing: NEW_PATH.new is made, put on the disk and renamed. Others may do no more with the
// copy than with the index.
//   Returns  kAlreadyExists; kNotFound, kBusy while another process changes the index file,
//            kDamaged, kVersion, kSystem, kOutOfMemory, kInterrupted.
KESTAN_SEARCH_EXPORT Status CopyIndex(const std::string& path, const std::string& new_path,
                                      const UpkeepProgress& progress = nullptr);

// An index folder before and after a compaction.
struct CompactionMeasure {
  std::uint64_t bytes_before = 0;  // of all files that MANIFEST names, and its own
  std::uint64_t bytes_after = 0;
  std::uint64_t segments_before = 0;
  std::uint64_t segments_after = 0;
};

// Measures what IndexWriter::Compact() would make of the index folder at `path`, without changes
// that wait elsewhere: merges it in the folder for temporary files ($TMPDIR, else /tmp), segment by
// segment, and keeps nothing of it. Needs room there for the largest segment. Changes nothing in
// the index, and a writer may be at work.
//   Returns  kInvalidArgument for an index file; kNotFound, kDamaged, kVersion, kSystem,
//            kOutOfMemory, kInterrupted.
KESTAN_SEARCH_EXPORT Result<CompactionMeasure> MeasureCompaction(
    const std::string& path, const UpkeepProgress& progress = nullptr);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_COPY_H_
