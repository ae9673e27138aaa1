// SPDX-License-Identifier: GPL-3.0-or-later
// An index folder in the hands of its writer.
#ifndef KESTAN_SEARCH_INDEX_COMMITTED_INDEX_H_
#define KESTAN_SEARCH_INDEX_COMMITTED_INDEX_H_

#include <kestan/search/index_writer.h>
#include <kestan/search/status.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "search/files/writer_lock.h"
#include "search/index/changed_segments.h"
#include "search/index/manifest/manifest.h"

namespace kestan::search {

// What is committed, and the way to commit more. After an error of a function that changes the
// folder, Reload() finds out what is committed now.
class CommittedIndex {
 public:
  using Properties = std::map<std::string, std::string, std::less<>>;

  // Locks the index folder at `path` and opens it, or makes it there, as `options` say. Removes
  // what an earlier writer left.
  //   Returns  kBusy, kNotFound, kDamaged, kVersion, kSystem; kInvalidArgument for a folder with
  //            other files in it.
  static Result<std::unique_ptr<CommittedIndex>> Open(const std::string& path,
                                                      const WriterOptions& options);

  const std::string& folder() const { return folder_; }
  const Manifest& manifest() const { return manifest_; }

  // The number of the next new segment.
  std::uint64_t NextSegment() const;

  // The size of the segments at these positions of the manifest.
  std::uint64_t BytesOf(const std::vector<std::size_t>& positions) const;

  // The segments, with changes that Commit() commits.
  ChangedSegments& segments() { return segments_; }
  const ChangedSegments& segments() const { return segments_; }

  // Commits the changes of the segments, and `properties`, if there are any changes.
  Status Commit(const Properties& properties);

  // Replaces the segments at these positions of the manifest, ascending, by one. Only while there
  // are no changes. See MergeSegments().
  //   Returns  the error; where it is one of reading a segment, `*unreadable` is its number, else
  //   0.
  Status Merge(const std::vector<std::size_t>& positions,
               const std::function<bool(std::uint64_t bytes)>& advance, std::uint64_t* unreadable);

  // Rewrites all segments without the positions of words, and commits them and `properties`.
  // Only while the segments have no changes. See MergeSegments().
  Status DropPositions(const Properties& properties,
                       const std::function<bool(std::uint64_t bytes)>& advance);

  // Forgets all changes, and removes their files.
  Status Reload();

  // Closes what a child process need not keep open of its parent's. Nothing else may follow there.
  void CloseInChild() noexcept { lock_.CloseInChild(); }

  // Removes the files of changes. Only Reload() may follow.
  void RemoveFilesOfChanges() const;

 private:
  CommittedIndex(std::string folder, WriterLock lock, Syncing syncing)
      : folder_(std::move(folder)), lock_(std::move(lock)), syncing_(syncing) {}

  Status Create(bool with_positions);
  std::vector<std::shared_ptr<const Segment>> SegmentsAt(
      const std::vector<std::size_t>& positions) const;
  Status Publish(Manifest next);

  const std::string folder_;
  WriterLock lock_;
  const Syncing syncing_;  // kLater: never
  Manifest manifest_;
  ChangedSegments segments_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_COMMITTED_INDEX_H_
