// SPDX-License-Identifier: GPL-3.0-or-later
// Words that stand in a row in a short text: a title, a sender.
#ifndef KESTAN_CLI_COMMANDS_SEARCH_FILTERS_WORD_RUN_H_
#define KESTAN_CLI_COMMANDS_SEARCH_FILTERS_WORD_RUN_H_

#include <string>
#include <string_view>
#include <vector>

namespace kestan_cli {

// Words by the rules of kestan::search::Analyzer: capitals and accents do not count.
class WordRun {
 public:
  // Takes the words of `text`; a "*" at its end makes the last of them a prefix.
  //   Throws   CommandError if they cannot be found: for lack of ICU.
  explicit WordRun(std::string_view text);

  bool empty() const { return words_.empty(); }

  // Returns whether the words stand in `text` in their order, each right after the one before.
  //   Throws   as the constructor does.
  bool StandsIn(std::string_view text) const;

  // Returns a query for documents that hold all of the words, in any order.
  std::string AsQuery() const;

 private:
  struct Word {
    std::string word;  // as it is stored
    bool is_prefix = false;
  };
  struct Placed;

  bool StartsAt(const std::vector<Placed>& text, std::size_t at) const;

  std::vector<Word> words_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_SEARCH_FILTERS_WORD_RUN_H_
