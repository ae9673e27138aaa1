// Finds the files to index, without reading them and without touching the index.
#ifndef KESTAN_CLI_FILES_SCAN_H_
#define KESTAN_CLI_FILES_SCAN_H_

#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "cli/files/fingerprint.h"
#include "cli/files/glob.h"
#include "cli/files/skip.h"

namespace kestan_cli {

struct FoundFile {
  std::string name;  // as NameOf returns it
  FileState state;
};

struct Scan {
  std::vector<FoundFile> files;  // in order of the bytes of their names, each once
  std::vector<Skip> skips;       // likewise
};

// What to do about a path that does not exist.
enum class MissingPath { kThrow, kSkip };

// Finds the files among `paths` and in all directories below them. Leaves out the index at
// `index_path` and the work directories beside it. `filter` applies to what is below a path, not to
// the path itself, and a path may be a symbolic link. Links inside directories are skipped, as are
// pipes, sockets and devices, directories that cannot be read, and names with a line feed.
//   Throws   CommandError that names the first path that cannot be examined or is neither a file
//            nor a directory; a missing one only with MissingPath::kThrow.
Scan ScanPaths(const std::vector<std::string>& paths, const std::string& index_path,
               const NameFilter& filter, MissingPath missing);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_SCAN_H_
