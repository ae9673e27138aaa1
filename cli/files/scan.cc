// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/scan.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "cli/console/interruption.h"
#include "cli/console/message.h"
#include "cli/files/descriptor.h"
#include "cli/files/ignore_rules.h"
#include "cli/files/paths.h"
#include "cli/files/stable_file.h"

namespace kestan_cli {
namespace {

using FileId = std::pair<std::uint64_t, std::uint64_t>;  // device and number

FileId IdOf(const struct stat& status) { return {status.st_dev, status.st_ino}; }

auto CannotRead(const std::string& path, const std::string& reason) {
  return CommandError("cannot read " + Quoted(path) + ": " + reason);
}

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};
using OpenFolder = std::unique_ptr<DIR, CloseFolder>;

// Opens the folder at `path`, which is no link; null with errno set if it cannot be read.
OpenFolder Open(const std::string& path) {
  Descriptor file(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!file.is_open()) return nullptr;
  OpenFolder folder(fdopendir(file.number()));
  if (folder != nullptr) file.Release();
  return folder;
}

// Identifies the folder of the index, which may have several paths.
std::optional<FileId> FolderOfIndex(const std::string& index_path) {
  struct stat status {};
  if (stat(index_path.c_str(), &status) != 0) return std::nullopt;
  return IdOf(status);
}

// Returns whether `folder` holds the manifest of an index, whose first line says so. A copy of an
// index has no lock yet.
bool HoldsManifest(DIR* folder) {
  constexpr std::string_view kStart = "kestan-index ";
  struct stat status {};
  if (fstatat(dirfd(folder), "MANIFEST", &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
  if (!S_ISREG(status.st_mode)) return false;  // the other end of a pipe would notice
  constexpr int kFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  const Descriptor manifest(openat(dirfd(folder), "MANIFEST", kFlags));
  std::array<char, kStart.size()> bytes{};
  return manifest.is_open() &&
         pread(manifest.number(), bytes.data(), bytes.size(), 0) == ssize_t{bytes.size()} &&
         std::string_view(bytes.data(), bytes.size()) == kStart;
}

// Returns whether an index comes to be in `folder`, which is called `name` until it is whole.
bool IsStagingFolder(DIR* folder, std::string_view name) {
  constexpr std::string_view kEnd = ".new";
  return name.size() > kEnd.size() && name.substr(name.size() - kEnd.size()) == kEnd &&
         faccessat(dirfd(folder), "staging.lock", F_OK, AT_SYMLINK_NOFOLLOW) == 0;
}

template <typename Named>
void SortByName(std::vector<Named>* all) {
  const auto is_less = [](const Named& left, const Named& right) { return left.name < right.name; };
  const auto is_same = [](const Named& left, const Named& right) {
    return left.name == right.name;
  };
  if (!std::is_sorted(all->begin(), all->end(), is_less)) {
    std::stable_sort(all->begin(), all->end(), is_less);
  }
  all->erase(std::unique(all->begin(), all->end(), is_same), all->end());
}

// Returns the path that the user named, at or above that of `root`.
const std::string& BaseOf(const ScanRoot& root) {
  return root.filter_base.empty() ? root.path : root.filter_base;
}

class Scanner {
 public:
  Scanner(const std::set<std::string>& borders, std::optional<FileId> index)
      : borders_(borders), index_(std::move(index)) {}

  // Adds what is at the path of `root`, whatever the patterns are, and all that is below it.
  void LookAt(const ScanRoot& root) {
    struct stat status {};
    if (stat(root.path.c_str(), &status) != 0) return Refuse(root, errno);
    if (S_ISDIR(status.st_mode)) return Walk(root);
    if (!S_ISREG(status.st_mode)) throw CannotRead(root.shown, "neither a file nor a folder");
    if (index_ != IdOf(status)) AddFile(root.path, status);
  }

  // A file that one root skipped may have been found through another.
  Scan Finish() {
    SortByName(&scan_.files);
    SortByName(&scan_.skips);
    const auto was_found = [this](const Skip& skip) {
      const auto found = std::lower_bound(
          scan_.files.begin(), scan_.files.end(), skip.name,
          [](const FoundFile& file, const std::string& name) { return file.name < name; });
      return found != scan_.files.end() && found->name == skip.name;
    };
    auto& skips = scan_.skips;
    skips.erase(std::remove_if(skips.begin(), skips.end(), was_found), skips.end());
    return std::move(scan_);
  }

 private:
  void Refuse(const ScanRoot& root, int error) {
    const bool is_missing = error == ENOENT || error == ENOTDIR;
    const std::string reason = is_missing ? "no such file or folder" : ReasonOf(error);
    if (root.missing == MissingPath::kThrow) throw CannotRead(root.shown, reason);
    scan_.missing.insert(root.path);
    scan_.skips.push_back({root.path, SkipKind::kUnreadable, reason,
                           is_missing ? "check their paths; a disk may not be mounted" : ""});
  }

  void AddSkip(const std::string& name, SkipKind kind, const std::string& reason) {
    scan_.skips.push_back({name, kind, reason});
  }

  void AddFile(const std::string& name, const struct stat& status) {
    if (name.find('\n') != std::string::npos) {
      return AddSkip(name, SkipKind::kName, "its name holds a line feed");
    }
    scan_.files.push_back({name, StateOf(status)});
  }

  // A folder that is yet to be walked, and what ignore files say above it.
  struct Waiting {
    std::string path;
    IgnoreRules::Shared rules;
  };

  // What a folder says of something in it.
  struct Entry {
    std::string name;
    unsigned char type = DT_UNKNOWN;
  };

  // A folder that is being walked.
  struct Folder {
    const ScanRoot& root;
    std::string start;  // of the paths in it
    int number;         // of its descriptor
    IgnoreRules::Shared rules;
  };

  void Walk(const ScanRoot& root) {
    waiting_.push_back({root.path, nullptr});
    if (!root.takes_ignored) waiting_[0].rules = IgnoreRules::Above(root.path, BaseOf(root));
    while (!waiting_.empty()) {
      Interruption::Check();
      const Waiting next = std::move(waiting_.back());
      waiting_.pop_back();
      WalkFolder(root, next);
    }
  }

  // Adds the files in the folder, and its folders to those that wait.
  void WalkFolder(const ScanRoot& root, const Waiting& next) {
    const std::string& path = next.path;
    const OpenFolder folder = Open(path);
    if (folder == nullptr) {
      if (errno == ENOENT) return;  // removed since its own folder was read
      return AddSkip(path, SkipKind::kUnreadable, ReasonOf(errno));
    }
    struct stat status {};
    if (fstat(dirfd(folder.get()), &status) == 0 && index_ == IdOf(status)) return;
    if (path != BaseOf(root)) {  // what the user named is walked, whatever it is
      if (HoldsManifest(folder.get())) return AddSkip(path, SkipKind::kIndex, "another index");
      if (IsStagingFolder(folder.get(), LastPart(path))) {
        return AddSkip(path, SkipKind::kIndex, "an index that is being made");
      }
    }
    const int error = ReadEntries(folder.get());
    Folder walked{root, path.back() == '/' ? path : path + "/", dirfd(folder.get()), next.rules};
    if (!root.takes_ignored) walked.rules = RulesIn(walked, path);
    for (const Entry& entry : entries_) FileAway(walked, entry);
    if (error != 0) AddSkip(path, SkipKind::kUnreadable, ReasonOf(error));
  }

  // Reads what is in `folder` into entries_. Returns 0, or the number of an error.
  int ReadEntries(DIR* folder) {
    entries_.clear();
    errno = 0;
    while (const dirent* entry = readdir(folder)) {  // NOLINT(concurrency-mt-unsafe)
      const std::string_view name = static_cast<const char*>(entry->d_name);
      if (name != "." && name != "..") entries_.push_back({std::string(name), entry->d_type});
      errno = 0;
    }
    return errno;
  }

  // Returns the rules for entries_.
  IgnoreRules::Shared RulesIn(const Folder& folder, const std::string& path) const {
    IgnoreRules::Present present;
    for (const Entry& entry : entries_) {
      if (entry.name[0] != '.') continue;
      present.ignore = present.ignore || entry.name == ".ignore";
      present.git_ignore = present.git_ignore || entry.name == ".gitignore";
      present.git = present.git || entry.name == ".git";
    }
    return IgnoreRules::In(folder.rules, folder.number, path, present);
  }

  // Looks at what `entry` names, if the folder does not say what it is. Files that are taken are
  // always looked at.
  void FileAway(const Folder& folder, const Entry& entry) {
    const std::string path = folder.start + entry.name;
    if (!borders_.empty() && borders_.count(path) != 0) return;
    struct stat status {};
    if (entry.type == DT_DIR || entry.type == DT_LNK) {
      status.st_mode = entry.type == DT_DIR ? S_IFDIR : S_IFLNK;
    } else if (fstatat(folder.number, entry.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
      if (errno == ENOENT) return;  // removed since the folder was read
      return AddSkip(path, SkipKind::kUnreadable, ReasonOf(errno));
    }
    if (IsLeftOut(folder, path, S_ISDIR(status.st_mode))) return;
    if (S_ISDIR(status.st_mode)) return waiting_.push_back({path, folder.rules});
    if (S_ISREG(status.st_mode)) return AddFile(path, status);
    const bool is_link = S_ISLNK(status.st_mode);
    AddSkip(path, is_link ? SkipKind::kLink : SkipKind::kSpecial,
            is_link ? "symbolic link" : "pipe, socket or device");
  }

  // Returns whether patterns, ignore files or version control leave out what is at `path`, which is
  // a skip then.
  bool IsLeftOut(const Folder& folder, const std::string& path, bool is_folder) {
    const std::string& base = BaseOf(folder.root);
    const std::size_t start = base.size() + (base.back() == '/' ? 0 : 1);
    const std::string against =
        folder.root.filter.ReasonAgainst(std::string_view(path).substr(start), is_folder);
    if (!against.empty()) {
      AddSkip(path, SkipKind::kExcluded, against);
      return true;
    }
    if (folder.root.takes_ignored) return false;
    const std::string reason = ReasonToLeaveOut(folder.rules, folder.number, path, is_folder);
    if (!reason.empty()) AddSkip(path, SkipKind::kIgnored, reason);
    return !reason.empty();
  }

  const std::set<std::string>& borders_;
  const std::optional<FileId> index_;
  std::vector<Waiting> waiting_;
  std::vector<Entry> entries_;  // of the folder that is being walked
  Scan scan_;
};

}  // namespace

Scan ScanRoots(const std::vector<ScanRoot>& roots, const std::set<std::string>& borders,
               const std::string& index_path) {
  Scanner scanner(borders, FolderOfIndex(index_path));
  for (const ScanRoot& root : roots) scanner.LookAt(root);
  return scanner.Finish();
}

}  // namespace kestan_cli
