// SPDX-License-Identifier: GPL-3.0-or-later
// Finds the files to index, without reading them and without touching the index.
#ifndef KESTAN_CLI_FILES_SCAN_H_
#define KESTAN_CLI_FILES_SCAN_H_

#include <set>
#include <string>
#include <vector>

#include "cli/files/fingerprint.h"
#include "cli/files/glob.h"
#include "cli/files/skip.h"

namespace kestan_cli {

struct FoundFile {
  std::string name;  // its canonical path
  FileState state;
};

// What to do about a path that does not exist.
enum class MissingPath { kThrow, kSkip };

// Where to look for files.
struct ScanRoot {
  std::string path;   // canonical
  std::string shown;  // the same in messages
  NameFilter filter;  // applies to what is below `path`, not to `path` itself
  MissingPath missing = MissingPath::kThrow;
  std::string filter_base = {};  // at or above `path`: patterns match paths below it; "": `path`
  bool takes_ignored = false;    // whatever ignore files say
};

struct Scan {
  std::vector<FoundFile> files;   // in order of the bytes of their names, each once
  std::vector<Skip> skips;        // likewise
  std::set<std::string> missing;  // the paths of roots that do not exist
};

// Finds the files at and below `roots`, looking at the status of each once. Leaves out the folder
// of the index at `index_path`, and what is at or below `borders`, unless a root is there too: that
// belongs to others. Links inside folders are skipped, as are pipes, sockets and devices, the
// folders of other indexes, folders that cannot be read, and names with a line feed; below a root
// that does not take them, also what ignore files leave out (see IgnoreRules) and version control's
// own. Of a folder that is left out, nothing else is looked at.
//   Throws   CommandError that names the first root that cannot be examined or is neither a file
//            nor a folder; a missing one only with MissingPath::kThrow.
//            Interrupted if a signal has come.
Scan ScanRoots(const std::vector<ScanRoot>& roots, const std::set<std::string>& borders,
               const std::string& index_path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_SCAN_H_
