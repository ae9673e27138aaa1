// SPDX-License-Identifier: GPL-3.0-or-later
// What a run of `kestan index` looks at, and how.
#ifndef KESTAN_CLI_SYNC_INDEX_SCOPE_H_
#define KESTAN_CLI_SYNC_INDEX_SCOPE_H_

#include <set>
#include <string>
#include <vector>

#include "cli/files/scan.h"
#include "cli/sync/root_choice.h"
#include "cli/sync/roots.h"

namespace kestan_cli {

// The files and folders of a run. Each file and each document belongs to the innermost root or
// target that holds it.
class IndexScope {
 public:
  // Of a run with the roots of `choice`.
  static IndexScope OfRoots(const RootChoice& choice, bool prunes);

  // Of a run with a list of paths, which are canonical: `options` are theirs. Without options of
  // reading, a file is read as the innermost of `roots` says.
  static IndexScope OfList(const std::vector<std::string>& paths, const RootOptions& options,
                           const Roots& roots);

  // Finds the files. Remembers which targets do not exist: nothing of theirs has vanished.
  //   Throws   as ScanRoots() does.
  Scan FindFiles(const std::string& index);

  // Returns whether the file of the document `name`, which was not found, is gone or ignored, and
  // not merely out of the scope or out of reach.
  bool HasVanished(const std::string& name) const;

  // Returns whether the document `name` is removed if its file has vanished.
  bool Prunes(const std::string& name) const;

  // Returns the roots by which files are read.
  const Roots& reading() const { return reading_; }

 private:
  Roots owners_;  // to which files and documents belong
  Roots reading_;
  std::vector<ScanRoot> to_scan_;
  std::set<std::string> borders_;
  std::set<std::string> ignored_;    // what was left out of them
  std::set<std::string> targets_;    // of the owners, those that are looked at
  std::set<std::string> forgotten_;  // of the owners, those whose documents all go
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_INDEX_SCOPE_H_
