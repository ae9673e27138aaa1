// SPDX-License-Identifier: GPL-3.0-or-later
// Patterns for the names of files.
#ifndef KESTAN_CLI_FILES_GLOB_H_
#define KESTAN_CLI_FILES_GLOB_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestan_cli {

// A pattern that a whole path must match:
//
//   ?      one character but "/"
//   *      any characters but "/"
//   **/    any directories, or none
//   **     any characters
//   [a-z]  one of the characters listed; [!a-z] one not listed, but never "/"
//   \x     x itself
//
// A "[" without a "]" stands for itself. Matching takes time in proportion to the length of the
// pattern times that of the path, whatever they are.
class Glob {
 public:
  // Copies `pattern`. A "/" at its end is ignored.
  explicit Glob(std::string_view pattern);

  bool Matches(std::string_view path) const;

  const std::string& pattern() const { return pattern_; }

 private:
  struct Token {
    enum class Kind { kLiteral, kAny, kSet, kStar, kFolders, kAll };
    Kind kind = Kind::kLiteral;
    std::string text;  // the character, or what stands between the brackets
  };

  void AddToken(std::string_view* rest);
  void Enter(std::size_t at, std::vector<bool>* states) const;
  static bool TakesOne(const Token& token, std::string_view character);

  std::string pattern_;
  std::vector<Token> tokens_;
};

// Which files below a directory to index.
struct NameFilter {
  std::vector<Glob> include;  // empty: all
  std::vector<Glob> exclude;  // wins

  // Returns why the file or directory at `path` is left out; an empty string if it is not. `path`
  // begins below the directory that the user named. A pattern may match the path or its last part.
  std::string ReasonAgainst(std::string_view path, bool is_folder) const;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_GLOB_H_
