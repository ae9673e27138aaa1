// SPDX-License-Identifier: GPL-3.0-or-later
// Patterns of ignore files: which files and folders are left out.
#ifndef KESTAN_CLI_FILES_IGNORE_IGNORE_PATTERN_H_
#define KESTAN_CLI_FILES_IGNORE_IGNORE_PATTERN_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/files/ignore/byte_set.h"

namespace kestan_cli {

// A line of an ignore file, as git reads it:
//
//   name     a file or folder of this name, at any depth
//   a/b, /a  what has this path below the folder of the ignore file
//   name/    folders only
//   *  ?     any bytes, one byte, but "/"
//   [a-z]    one byte of the set; [!a-z] or [^a-z] one that is not; [[:digit:]] of a class
//   **/x     x at any depth; a/**/b likewise between a and b; a/** all that is below a
//   !x       what earlier lines leave out is taken again
//   \x       x itself
//
// Blanks at the end count only after a backslash. Stars that do not stand between slashes are one
// star, however many.
class IgnorePattern {
 public:
  // Reads `line`, which has no line feed. Copies what it needs.
  //   Returns  nothing for a comment, an empty line and a pattern that no path can match, such as
  //            one with an open "[" or of more than 4,096 bytes.
  static std::optional<IgnorePattern> Parse(std::string_view line);

  // Returns the line as it was given, without blanks at its end.
  const std::string& text() const { return text_; }

  bool is_negated() const { return is_negated_; }
  bool is_for_folders_only() const { return is_for_folders_only_; }

  // Returns whether it is a path below the folder of the ignore file, and not a name.
  bool is_path() const { return is_path_; }

  // Returns the only name or path that it matches; nothing if it has wildcards.
  std::optional<std::string> Literal() const;

  // Returns whether it matches `path`, which begins below the folder of the ignore file and ends
  // with the name in question. Whether that is a folder is for the caller to look at. Takes time in
  // proportion to the length of the pattern times that of the path.
  bool Matches(std::string_view path) const;

 private:
  struct Token {
    enum class Kind { kByte, kAny, kSet, kStar };
    Kind kind = Kind::kByte;
    char byte = 0;        // of kByte
    std::size_t set = 0;  // of kSet: in sets_
  };

  // What stands between two slashes.
  struct Part {
    bool is_any_depth = false;  // any number of names
    bool is_literal = true;
    std::string end;  // the bytes after its last wildcard; all of them if it has none
    std::vector<Token> tokens{};
  };

  bool ParseParts(std::string_view pattern);
  bool ParsePart(std::string_view* rest);
  bool AddToken(std::string_view* rest, Part* part);
  bool TakesOne(const Token& token, char byte) const;
  bool PartMatches(const Part& part, std::string_view name) const;

  std::string text_;
  bool is_negated_ = false;
  bool is_for_folders_only_ = false;
  bool is_path_ = false;
  std::vector<Part> parts_;
  std::vector<ByteSet> sets_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_IGNORE_IGNORE_PATTERN_H_
