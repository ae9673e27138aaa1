// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/ignore_rules.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "cli/console/message.h"
#include "cli/files/descriptor.h"
#include "cli/files/ignore/version_control.h"
#include "cli/files/paths.h"

namespace kestan_cli {
namespace {

bool Has(int folder, const char* name) {
  return faccessat(folder, name, F_OK, AT_SYMLINK_NOFOLLOW) == 0;
}

bool HasGit(const std::string& path) {
  return Has(AT_FDCWD, (path + (path.back() == '/' ? ".git" : "/.git")).c_str());
}

std::string TopOfWorkTree(const std::string& path) {
  std::string top = path;
  while (!top.empty() && !HasGit(top)) top = FolderOf(top);
  return top;
}

// Returns the bytes of a regular file that is no link and takes no more than `max_bytes`.
std::optional<std::string> BytesOf(int folder, const std::string& name, std::size_t max_bytes) {
  constexpr int kFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  const Descriptor file(openat(folder, name.c_str(), kFlags));
  struct stat status {};
  if (!file.is_open() || fstat(file.number(), &status) != 0) return std::nullopt;
  if (!S_ISREG(status.st_mode)) return std::nullopt;
  std::string bytes;
  std::array<char, 4096> piece{};
  while (true) {
    const ssize_t got = read(file.number(), piece.data(), piece.size());
    if (got < 0) return std::nullopt;
    if (got == 0) return bytes;
    bytes.append(piece.data(), static_cast<std::size_t>(got));
    if (bytes.size() > max_bytes) return std::nullopt;
  }
}

// Returns the path that a file such as .git of a second work tree names after `start`.
std::string PathIn(int folder, const std::string& name, std::string_view start) {
  constexpr std::size_t kMaxBytes = 8192;
  const std::string bytes = BytesOf(folder, name, kMaxBytes).value_or("");
  const std::string_view line = std::string_view(bytes).substr(0, bytes.find('\n'));
  if (line.substr(0, start.size()) != start) return "";
  return std::string(line.substr(start.size()));
}

std::string Below(const std::string& folder, const std::string& path) {
  return path.front() == '/' ? path : folder + "/" + path;
}

// Returns the path of the exclude file of the work tree whose top is the open folder `top`,
// relative to it.
std::string ExcludeFile(int top) {
  const std::string linked = PathIn(top, ".git", "gitdir: ");
  if (linked.empty()) return ".git/info/exclude";
  const std::string common = PathIn(top, linked + "/commondir", "");
  return (common.empty() ? linked : Below(linked, common)) + "/info/exclude";
}

// Returns the folders from `top` down to that of `path`.
std::vector<std::string> FoldersBetween(const std::string& top, const std::string& path) {
  std::vector<std::string> folders;
  for (std::string each = FolderOf(path); !each.empty() && IsBelow(each, top);
       each = FolderOf(each)) {
    folders.push_back(each);
  }
  std::reverse(folders.begin(), folders.end());
  return folders;
}

std::string WithSlash(const std::string& path) { return path.back() == '/' ? path : path + "/"; }

// Returns the rules for what is in the folder at `path`, whatever it has.
IgnoreRules::Shared RulesIn(const IgnoreRules::Shared& above, const std::string& path) {
  const Descriptor folder(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!folder.is_open()) return above;
  IgnoreRules::Present present;
  present.ignore = present.git_ignore = true;
  present.git = Has(folder.number(), ".git");
  return IgnoreRules::In(above, folder.number(), path, present);
}

}  // namespace

IgnoreRules::Found IgnoreRules::Read(int folder, const std::string& name,
                                     const std::string& shown) {
  const std::optional<std::string> bytes = BytesOf(folder, name, kMaxIgnoreBytes);
  if (!bytes.has_value()) return std::nullopt;
  IgnoreList list(*bytes);
  if (list.empty()) return std::nullopt;
  return File{shown, std::move(list)};
}

IgnoreRules::Shared IgnoreRules::In(const Shared& above, int folder, const std::string& path,
                                    const Present& present) {
  if (!present.ignore && !present.git_ignore && !present.git) return above;
  IgnoreRules rules;
  rules.above_ = above;
  rules.folder_ = WithSlash(path);
  rules.is_top_ = present.git;
  rules.is_in_work_tree_ = present.git || (above != nullptr && above->is_in_work_tree_);
  if (present.ignore) rules.ignore_ = Read(folder, ".ignore", rules.folder_ + ".ignore");
  if (present.git_ignore && rules.is_in_work_tree_) {
    rules.git_ignore_ = Read(folder, ".gitignore", rules.folder_ + ".gitignore");
  }
  if (present.git) {
    const std::string name = ExcludeFile(folder);
    rules.exclude_ = Read(folder, name, Below(path == "/" ? "" : path, name));
  }
  const bool says_something = present.git || rules.ignore_ || rules.git_ignore_;
  return says_something ? std::make_shared<const IgnoreRules>(std::move(rules)) : above;
}

IgnoreRules::Shared IgnoreRules::Above(const std::string& path, const std::string& base) {
  const std::string top = TopOfWorkTree(base);
  Shared rules;
  for (const std::string& folder : FoldersBetween(top.empty() ? base : top, path)) {
    rules = RulesIn(rules, folder);
  }
  return rules;
}

// Returns what `file` says: why `path` is left out, "" that it is taken, or nothing.
std::optional<std::string> IgnoreRules::Verdict(const Found& file, std::string_view path,
                                                bool is_folder) const {
  if (!file.has_value()) return std::nullopt;
  const IgnoreList::Match match = file->list.Find(path.substr(folder_.size()), is_folder);
  if (match.pattern == nullptr) return std::nullopt;
  if (match.pattern->is_negated()) return "";
  return "line " + std::to_string(match.line) + " of " + Quoted(file->path) + ": " +
         OneLine(match.pattern->text());
}

std::optional<std::string> IgnoreRules::VerdictOfGit(std::string_view path, bool is_folder) const {
  if (!is_in_work_tree_) return std::nullopt;
  for (const IgnoreRules* rules = this; rules != nullptr; rules = rules->above_.get()) {
    auto verdict = rules->Verdict(rules->git_ignore_, path, is_folder);
    if (verdict.has_value()) return verdict;
    if (rules->is_top_) return rules->Verdict(rules->exclude_, path, is_folder);
  }
  return std::nullopt;
}

std::string IgnoreRules::ReasonAgainst(std::string_view path, bool is_folder) const {
  for (const IgnoreRules* rules = this; rules != nullptr; rules = rules->above_.get()) {
    const auto verdict = rules->Verdict(rules->ignore_, path, is_folder);
    if (verdict.has_value()) return *verdict;
  }
  return VerdictOfGit(path, is_folder).value_or("");
}

std::string ReasonToLeaveOut(const IgnoreRules::Shared& rules, int folder, const std::string& path,
                             bool is_folder) {
  const std::string system = VersionControlOf(folder, std::string(LastPart(path)));
  if (!system.empty()) return "kept by " + system;
  return rules == nullptr ? "" : rules->ReasonAgainst(path, is_folder);
}

std::string ReasonToLeaveOut(const std::string& base, const std::string& path) {
  IgnoreRules::Shared rules = IgnoreRules::Above(base, base);
  std::vector<std::string> ways = FoldersBetween(base, path);
  ways.push_back(path);
  for (std::size_t i = 1; i < ways.size(); ++i) {
    const Descriptor folder(open(ways[i - 1].c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    struct stat status {};
    if (!folder.is_open() || lstat(ways[i].c_str(), &status) != 0) return "";
    rules = RulesIn(rules, ways[i - 1]);
    std::string reason = ReasonToLeaveOut(rules, folder.number(), ways[i], S_ISDIR(status.st_mode));
    if (!reason.empty()) return reason;
  }
  return "";
}

}  // namespace kestan_cli
