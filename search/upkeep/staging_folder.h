// SPDX-License-Identifier: GPL-3.0-or-later
// A folder in which an index comes to be.
#ifndef KESTAN_SEARCH_UPKEEP_STAGING_FOLDER_H_
#define KESTAN_SEARCH_UPKEEP_STAGING_FOLDER_H_

#include <kestan/search/status.h>
#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>

#include "search/files/writer_lock.h"
#include "search/upkeep/rights.h"

namespace kestan::search {

// Returns `path` without slashes at its end.
std::string WithoutSlashes(std::string path);

// TARGET.new, where a new index is made before it gets its name at once. Only this user may look
// into it until then. Removed at the end with what it holds, unless it was published.
class StagingFolder {
 public:
  StagingFolder() = default;
  StagingFolder(const StagingFolder&) = delete;
  StagingFolder& operator=(const StagingFolder&) = delete;
  ~StagingFolder() { Remove(); }

  // Makes the folder for what is to be at `target`. The index gets the rights of the one at `like`;
  // if that is empty, those that new files of this process have. What an earlier process of this
  // user left at TARGET.new is removed; anything else there stays.
  //   Returns  kAlreadyExists if there is something at `target` or TARGET.new, kBusy if another
  //            process is making an index there; kSystem.
  Status Create(const std::string& target, const std::string& like = "");

  // The same for files of this process alone, in the folder for temporary files.
  Status CreateTemporary();

  const std::string& path() const { return path_; }

  // Removes the files of segment `number`, which has no edits.
  void RemoveSegment(std::uint64_t number) const;

  // Puts all on the disk and gives the folder, or one file in it, the name of the target.
  //   Returns  kAlreadyExists if there is something by now; kSystem.
  Status PublishFolder();
  Status PublishFile(const std::string& file);

 private:
  Status GiveRights(const std::string& path, bool is_folder) const;
  Status MoveToTarget(const std::string& from) const;
  void Remove() noexcept;

  std::string target_;
  std::string path_;                  // "": there is none, or not any more
  std::optional<WriterLock> marker_;  // shows that the folder is one of these, and is in use
  std::optional<Rights> rights_;
  mode_t folder_mode_ = 0;  // that the folder had when it was made
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_UPKEEP_STAGING_FOLDER_H_
