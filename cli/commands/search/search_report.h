// SPDX-License-Identifier: GPL-3.0-or-later
// The result of a search, as text and as JSON.
#ifndef KESTAN_CLI_COMMANDS_SEARCH_SEARCH_REPORT_H_
#define KESTAN_CLI_COMMANDS_SEARCH_SEARCH_REPORT_H_

#include <kestan/search.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace kestan_cli {

// A hit and what is shown with it.
struct ShownHit {
  kestan::search::Hit hit;
  std::string path;   // its name as it is shown
  std::string index;  // which has it; empty if there is only one
  // When a message was sent or, of others, the file was changed; in seconds since 1970, if shown.
  std::optional<std::int64_t> date;
  std::string from;                               // the sender of a message; empty if there is none
  std::vector<kestan::search::Fragment> snippet;  // empty if there is none
};

struct SearchReport {
  std::string query;               // as the user typed it
  std::uint64_t total = 0;         // of the hits
  std::uint64_t milliseconds = 0;  // to find them
  std::vector<ShownHit> hits;      // those that are shown
  std::vector<std::string> suggestions;
  std::vector<std::string> notes;
  std::optional<kestan::search::Explanation> explanation;
};

// Returns "PERCENT NAME" and a line feed.
std::string PlainLine(int percent, const std::string& name);

// Lines of any length.
constexpr std::size_t kAnyColumns = std::numeric_limits<std::size_t>::max();

// Returns a hit on a few lines: "PERCENT NAME"; the date, by the clock of the user, the name of the
// sender, and the title; the snippet. All but the first are indented. With `coloured`, each has its
// terminal colour and matches are bold; without, [matches] are in brackets. Control characters are
// escaped.
//
// No line is longer than `columns`, as far as there are 20: of a name that is, the end is shown, of
// a title the start, and of a snippet two lines at most.
std::string RichLines(const ShownHit& hit, bool coloured, std::size_t columns = kAnyColumns);

// Returns "10 of 1,023 in 3 ms" and a line feed, for `shown` hits; "nothing found in 3 ms" without.
std::string TotalLine(const SearchReport& report, std::size_t shown, bool coloured);

// Returns one line for each part of the tree, indented by its depth: what it is, how many documents
// it matches and how many microseconds it took.
std::vector<std::string> ExplanationLines(const kestan::search::Explanation& explanation);

// Returns the report as one JSON object and a line feed; docs/json.md names its fields. Bytes
// that are not UTF-8 become U+FFFD.
std::string AsJson(const SearchReport& report);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_SEARCH_SEARCH_REPORT_H_
