#include "cli/files/scan.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <memory>
#include <string_view>
#include <system_error>

#include "cli/console/message.h"
#include "cli/files/paths.h"
#include "cli/files/stable_file.h"
#include "cli/files/work_directory.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

using FileId = std::pair<std::uint64_t, std::uint64_t>;  // device and number

FileId IdOf(const struct stat& status) { return {status.st_dev, status.st_ino}; }

auto CannotRead(const std::string& path, const std::string& reason) {
  return CommandError("cannot read " + Quoted(path) + ": " + reason);
}

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

// Identifies the index, whose file may have several names.
std::set<FileId> FilesOfIndex(const std::string& index_path) {
  std::error_code error;
  const fs::path real = fs::canonical(index_path, error);
  std::set<FileId> ids;
  for (const std::string& path : {index_path, error ? index_path : real.string()}) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) ids.insert(IdOf(status));
  }
  return ids;
}

class Scanner {
 public:
  Scanner(std::set<FileId> own_files, const NameFilter& filter)
      : own_files_(std::move(own_files)), filter_(filter) {}

  // Adds what the user named, whatever the patterns are.
  void LookAt(const std::string& path, MissingPath missing) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return Refuse(path, errno, missing);
    if (S_ISDIR(status.st_mode)) return Walk(path);
    if (!S_ISREG(status.st_mode)) throw CannotRead(path, "neither a file nor a folder");
    AddFile(NameOf(path), status);
  }

  // A file that one path skipped may have been found through another.
  Scan Finish() {
    Scan scan;
    for (auto& [name, state] : files_) scan.files.push_back({name, state});
    for (auto& [name, skip] : skips_) {
      if (files_.count(name) == 0) scan.skips.push_back(std::move(skip));
    }
    return scan;
  }

 private:
  void Refuse(const std::string& path, int error, MissingPath missing) {
    const bool is_missing = error == ENOENT || error == ENOTDIR;
    const std::string reason = is_missing ? "no such file or folder" : ReasonOf(error);
    if (missing == MissingPath::kThrow) throw CannotRead(path, reason);
    AddSkip(NameOf(path), SkipKind::kUnreadable, reason);
  }

  void AddSkip(const std::string& name, SkipKind kind, const std::string& reason) {
    skips_.try_emplace(name, Skip{name, kind, reason});
  }

  void AddFile(const std::string& name, const struct stat& status) {
    if (own_files_.count(IdOf(status)) != 0) return;
    if (name.find('\n') != std::string::npos) {
      return AddSkip(name, SkipKind::kName, "its name holds a line feed");
    }
    files_.try_emplace(name, StateOf(status));
  }

  void Walk(const std::string& root) {
    std::vector<std::string> waiting{root};
    while (!waiting.empty()) {
      const std::string next = std::move(waiting.back());
      waiting.pop_back();
      WalkFolder(root, next, &waiting);
    }
  }

  // Adds the files in `folder`, and its directories to `waiting`.
  void WalkFolder(const std::string& root, const std::string& folder,
                  std::vector<std::string>* waiting) {
    const std::unique_ptr<DIR, CloseFolder> open(opendir(folder.c_str()));
    if (open == nullptr) return AddSkip(NameOf(folder), SkipKind::kUnreadable, ReasonOf(errno));
    const std::string start = folder.back() == '/' ? folder : folder + "/";
    errno = 0;
    while (const dirent* entry = readdir(open.get())) {  // NOLINT(concurrency-mt-unsafe)
      const std::string_view name = static_cast<const char*>(entry->d_name);
      if (name == "." || name == ".." || IsWorkDirectoryName(name)) continue;
      FileAway(root, start + std::string(name), waiting);
      errno = 0;
    }
    if (errno != 0) AddSkip(NameOf(folder), SkipKind::kUnreadable, ReasonOf(errno));
  }

  void FileAway(const std::string& root, const std::string& path,
                std::vector<std::string>* waiting) {
    struct stat status {};
    const int error = lstat(path.c_str(), &status) == 0 ? 0 : errno;
    if (error == ENOENT) return;  // removed since the directory was read
    const std::string name = NameOf(path);
    if (error != 0) return AddSkip(name, SkipKind::kUnreadable, ReasonOf(error));
    const std::size_t start = root.size() + (root.back() == '/' ? 0 : 1);
    const std::string against =
        filter_.ReasonAgainst(std::string_view(path).substr(start), S_ISDIR(status.st_mode));
    if (!against.empty()) return AddSkip(name, SkipKind::kExcluded, against);
    if (S_ISDIR(status.st_mode)) return waiting->push_back(path);
    if (S_ISREG(status.st_mode)) return AddFile(name, status);
    const bool is_link = S_ISLNK(status.st_mode);
    AddSkip(name, is_link ? SkipKind::kLink : SkipKind::kSpecial,
            is_link ? "symbolic link" : "pipe, socket or device");
  }

  const std::set<FileId> own_files_;
  const NameFilter& filter_;
  std::map<std::string, FileState> files_;
  std::map<std::string, Skip> skips_;
};

}  // namespace

Scan ScanPaths(const std::vector<std::string>& paths, const std::string& index_path,
               const NameFilter& filter, MissingPath missing) {
  Scanner scanner(FilesOfIndex(index_path), filter);
  for (const std::string& path : paths) scanner.LookAt(path, missing);
  return scanner.Finish();
}

}  // namespace kestan_cli
