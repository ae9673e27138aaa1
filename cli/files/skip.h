// SPDX-License-Identifier: GPL-3.0-or-later
// Files that are skipped, and why.
#ifndef KESTAN_CLI_FILES_SKIP_H_
#define KESTAN_CLI_FILES_SKIP_H_

#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace kestan_cli {

enum class SkipKind {
  kBinary,
  kLink,      // a symbolic link inside a directory
  kSpecial,   // a pipe, a socket or a device
  kIndex,     // a folder that is an index, or becomes one
  kExcluded,  // by the user's patterns
  kIgnored,   // by ignore files, or as version control's own
  kNoConverter,
  kArchive,  // whose members are not asked for
  // Those from here on are failures: the user asked for the file, and it is not in the index.
  kUnreadable,
  kConversion,
  kChanging,
  kTooLarge,
  kName,
};

// Returns whether a file skipped for `kind` should have been indexed.
bool IsFailure(SkipKind kind);

// Returns how many files were skipped for `kind`, in words: "1 binary file", "2 links".
std::string CountedSkips(unsigned long count, SkipKind kind);

// Returns the name of `kind` for programs: "binary", "no_converter".
std::string KeyOf(SkipKind kind);

// Why one file is skipped. The run goes on with the next file.
class SkipFile : public std::runtime_error {
 public:
  SkipFile(SkipKind kind, const std::string& reason, std::string remedy = "")
      : std::runtime_error(reason), kind_(kind), remedy_(std::move(remedy)) {}

  SkipKind kind() const { return kind_; }
  const std::string& remedy() const { return remedy_; }

 private:
  SkipKind kind_;
  std::string remedy_;
};

struct Skip {
  std::string name;
  SkipKind kind = SkipKind::kBinary;
  std::string reason;       // the second half of a sentence: "permission denied"
  std::string remedy = {};  // what helps, without a full stop; "": what helps all of its kind
};

// Files that were skipped for one reason.
struct SkipReason {
  SkipKind kind = SkipKind::kBinary;
  std::string remedy;       // what a person can do about it: "check their permissions"
  bool has_remedy = false;  // false: `remedy` says why there is nothing to do
  unsigned long files = 0;
};

// Returns the reasons for `skips`, the most frequent first.
std::vector<SkipReason> ReasonsFor(const std::vector<Skip>& skips);

// Counts `skips` by kind.
std::map<SkipKind, unsigned long> CountKinds(const std::vector<Skip>& skips);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_SKIP_H_
