// SPDX-License-Identifier: GPL-3.0-or-later
// The patterns of one ignore file.
#ifndef KESTAN_CLI_FILES_IGNORE_IGNORE_LIST_H_
#define KESTAN_CLI_FILES_IGNORE_IGNORE_LIST_H_

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "cli/files/ignore/ignore_pattern.h"

namespace kestan_cli {

class IgnoreList {
 public:
  // Reads `bytes`, one pattern a line. A byte order mark, a carriage return before a line feed, and
  // what follows a NUL in its line do not count.
  explicit IgnoreList(std::string_view bytes);

  bool empty() const { return patterns_.empty(); }

  struct Match {
    const IgnorePattern* pattern = nullptr;  // of the list; null where none matches
    std::size_t line = 0;                    // counted from 1
  };

  // Finds the last pattern that matches `path`, which begins below the folder of the ignore file.
  // Patterns without wildcards take no time, the others each that of a comparison.
  Match Find(std::string_view path, bool is_folder) const;

 private:
  struct Numbered {
    IgnorePattern pattern;
    std::size_t line;
  };

  // The last of the patterns of one name or path, as numbers in patterns_, from 1; 0 for none.
  struct Last {
    std::size_t of_all = 0;
    std::size_t of_folders = 0;
  };
  using LastByText = std::map<std::string, Last, std::less<>>;

  void Add(std::string_view line, std::size_t number);
  static std::size_t LastOf(const LastByText& lasts, std::string_view text, bool is_folder);

  std::vector<Numbered> patterns_;
  std::vector<std::size_t> wild_;  // those with wildcards, in order
  LastByText names_;
  LastByText paths_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_IGNORE_IGNORE_LIST_H_
