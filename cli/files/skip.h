// Files that are skipped, and why.
#ifndef KESTAN_CLI_FILES_SKIP_H_
#define KESTAN_CLI_FILES_SKIP_H_

#include <map>
#include <stdexcept>
#include <string>
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
  SkipFile(SkipKind kind, const std::string& reason) : std::runtime_error(reason), kind_(kind) {}

  SkipKind kind() const { return kind_; }

 private:
  SkipKind kind_;
};

struct Skip {
  std::string name;
  SkipKind kind = SkipKind::kBinary;
  std::string reason;  // the second half of a sentence: "permission denied"
};

// Counts `skips` by kind.
std::map<SkipKind, unsigned long> CountKinds(const std::vector<Skip>& skips);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_SKIP_H_
