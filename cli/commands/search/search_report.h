// The result of a search, as text and as JSON.
#ifndef KESTAN_CLI_COMMANDS_SEARCH_SEARCH_REPORT_H_
#define KESTAN_CLI_COMMANDS_SEARCH_SEARCH_REPORT_H_

#include <kestan/search.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestan_cli {

// A hit and what is shown with it.
struct ShownHit {
  kestan::search::Hit hit;
  std::string path;                               // its name as it is shown
  std::string index;                              // which has it; empty if there is only one
  std::vector<kestan::search::Fragment> snippet;  // empty if there is none
};

struct SearchReport {
  std::string query;           // as the user typed it
  std::uint64_t total = 0;     // of the hits
  std::vector<ShownHit> hits;  // those that are shown
  std::vector<std::string> suggestions;
  std::vector<std::string> notes;
  std::optional<kestan::search::Explanation> explanation;
};

// Returns "PERCENT NAME" and a line feed.
std::string PlainLine(int percent, const std::string& name);

// Returns a hit on up to three lines: "PERCENT NAME", the title and the snippet, both indented.
// With `coloured`, each has its terminal colour and matches are bold; without, [matches] are in
// brackets. Control characters are escaped.
std::string RichLines(const ShownHit& hit, bool coloured);

// Returns one line for each part of the tree, indented by its depth: what it is, how many documents
// it matches and how many microseconds it took.
std::vector<std::string> ExplanationLines(const kestan::search::Explanation& explanation);

// Returns the report as one JSON object and a line feed; docs/json.md names its fields. Bytes
// that are not UTF-8 become U+FFFD.
std::string AsJson(const SearchReport& report);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_SEARCH_SEARCH_REPORT_H_
