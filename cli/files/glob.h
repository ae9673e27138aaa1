// Patterns for names of files.
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
//   **/    any folders, or none
//   **     any characters
//   [a-z]  one of the characters listed; [!a-z] one not listed, but never "/"
//   \x     x itself
//
// A "[" without its "]" stands for itself. Time grows with pattern and path, never faster.
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

// Which of the files below a folder to take.
struct NameFilter {
  std::vector<Glob> include;  // empty: all
  std::vector<Glob> exclude;  // wins

  // Says why the file or folder at `path`, seen from the folder that the user named, is left out.
  // Patterns are held against the path and against its last part.
  //   Returns  an empty string if it is not.
  std::string ReasonAgainst(std::string_view path, bool is_folder) const;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_GLOB_H_
