// SPDX-License-Identifier: GPL-3.0-or-later
// Which files the ignore files of a tree leave out.
#ifndef KESTAN_CLI_FILES_IGNORE_RULES_H_
#define KESTAN_CLI_FILES_IGNORE_RULES_H_

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "cli/files/ignore/ignore_list.h"

namespace kestan_cli {

// What the ignore files of a folder and of those above it say. A folder that has .git is the top of
// a work tree: there, .gitignore and .git/info/exclude of the tree count, and those above it do
// not. A .ignore counts for all that is below it. What a .ignore says goes before what a .gitignore
// says, then that of the deeper folder, then the later line; .git/info/exclude comes last.
//
// Immutable. Each folder shares the rules of those above it.
class IgnoreRules {
 public:
  using Shared = std::shared_ptr<const IgnoreRules>;  // null: no rules

  // Which of these a folder has.
  struct Present {
    bool ignore = false;      // .ignore
    bool git_ignore = false;  // .gitignore
    bool git = false;         // .git
  };

  // Returns the rules for what is in the open folder `folder` at `path`, which is canonical; those
  // of the folders above are `above`. Files that are links, are larger than kMaxIgnoreBytes or
  // cannot be read say nothing.
  static Shared In(const Shared& above, int folder, const std::string& path,
                   const Present& present);

  // Returns the rules of the folders above the folder at `path`, from `base` down, which is at or
  // above it; from the top of the work tree of `base`, if it is in one. Both are canonical.
  static Shared Above(const std::string& path, const std::string& base);

  // Returns why the file or folder at `path`, below the folder of these rules, is left out: "line 3
  // of '/src/.gitignore': *.o"; "" if it is not. Does not look at the folders between.
  std::string ReasonAgainst(std::string_view path, bool is_folder) const;

 private:
  // The list of an ignore file, and its path.
  struct File {
    std::string path;
    IgnoreList list;
  };
  using Found = std::optional<File>;

  static Found Read(int folder, const std::string& name, const std::string& shown);
  std::optional<std::string> Verdict(const Found& file, std::string_view path,
                                     bool is_folder) const;
  std::optional<std::string> VerdictOfGit(std::string_view path, bool is_folder) const;

  Shared above_;
  std::string folder_;  // with a slash at its end
  bool is_in_work_tree_ = false;
  bool is_top_ = false;  // of a work tree
  Found ignore_;
  Found git_ignore_;
  Found exclude_;
};

// Larger ignore files say nothing.
inline constexpr std::size_t kMaxIgnoreBytes = std::size_t{1} << 20;

// Returns why `rules`, which may be null, or version control leave out the file or folder at `path`
// in the open folder `folder`; "" if they do not.
std::string ReasonToLeaveOut(const IgnoreRules::Shared& rules, int folder, const std::string& path,
                             bool is_folder);

// Returns the same for what is at `path`, and for the folders between it and `base`, which is above
// it. Both are canonical.
std::string ReasonToLeaveOut(const std::string& base, const std::string& path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_IGNORE_RULES_H_
