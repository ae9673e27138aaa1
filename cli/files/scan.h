// Finding the files to index, without reading them and without touching the index.
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
  std::string name;  // as NameOf has it
  FileState state;
};

struct Scan {
  std::vector<FoundFile> files;  // in order of the bytes of their names, each once
  std::vector<Skip> skips;       // likewise
};

// What to do about a path that leads nowhere.
enum class MissingPath { kThrow, kSkip };

// Finds the files among `paths` and in all folders below them, but not the index at `index_path`
// nor the files that stand beside it while it is changed. A path that is a symbolic link itself is
// followed, and no pattern of `filter` is held against it; links inside folders are left out, as
// are pipes, sockets and devices, folders that cannot be read, and names with a line feed.
//   Throws   CommandError with the name of the first path that cannot be looked at, or is neither a
//            file nor a folder; of the first that is missing only where `missing` says so.
Scan ScanPaths(const std::vector<std::string>& paths, const std::string& index_path,
               const NameFilter& filter, MissingPath missing);

// Returns `path` as it stands in the names of documents: a way to the same file without ".", "//",
// a slash at the end, and ".." behind a folder that is there. Behind anything else, such as a
// symbolic link, ".." stays. An empty path stays empty.
std::string NameOf(const std::string& path);

// Whether a document `name` is at one of `paths` (as NameOf has them) or below it, going by the
// names alone. What is behind a ".." is not below what is before it.
bool IsBelow(const std::string& name, const std::set<std::string>& paths);

// Whether nothing is at `path` any more. Where that cannot be told, something may be.
bool HasVanished(const std::string& path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_SCAN_H_
