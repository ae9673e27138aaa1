// SPDX-License-Identifier: GPL-3.0-or-later
// Who may read and change an index.
#ifndef KESTAN_SEARCH_UPKEEP_RIGHTS_H_
#define KESTAN_SEARCH_UPKEEP_RIGHTS_H_

#include <kestan/search/status.h>
#include <sys/types.h>

#include <string>

namespace kestan::search {

// The rights to an index that another one is made of. With them nobody may do more with the new
// index than with the old one.
class Rights {
 public:
  // Reads the rights to the index folder or index file at `path`.
  //   Returns  kNotFound, kSystem.
  static Result<Rights> Of(const std::string& path);

  // Gives a file, or a folder of files, these rights, and the group as far as this process may. If
  // it may not, the group of the file and all others get only what both had. Where there was an
  // access control list, only the owner gets any.
  Status GiveToFile(const std::string& path) const { return Give(path, mode_ & 0666); }
  Status GiveToFolder(const std::string& path) const;

 private:
  Rights(mode_t mode, gid_t group, bool has_list)
      : mode_(mode), group_(group), has_list_(has_list) {}

  Status Give(const std::string& path, mode_t mode) const;

  mode_t mode_;  // of a file
  gid_t group_;
  bool has_list_;
};

// Removes the access control lists that a new folder got from the one around it, and would pass on
// to its files: the index that it is made of did not have them.
//   Returns  kSystem.
Status RemoveAccessLists(const std::string& folder);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_UPKEEP_RIGHTS_H_
