// Writing down what a search has found, for people and for programs.
#ifndef KESTAN_CLI_COMMANDS_SEARCH_REPORT_H_
#define KESTAN_CLI_COMMANDS_SEARCH_REPORT_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "search/query/explanation.h"
#include "search/ranking/hits.h"
#include "search/snippet/snippet.h"

namespace kestan_cli {

// A hit with what is shown of it.
struct ShownHit {
  kestan::search::Hit hit;
  std::string title;                              // empty if the document has none
  std::vector<kestan::search::Fragment> snippet;  // empty if there is none
};

struct SearchReport {
  std::string query;           // as it was asked
  std::size_t total = 0;       // of the hits
  std::vector<ShownHit> hits;  // those that are shown
  std::vector<std::string> suggestions;
  std::vector<std::string> notes;
  std::optional<kestan::search::Explanation> explanation;
};

// Returns "PERCENT NAME" and a line feed.
std::string PlainLine(const kestan::search::Hit& hit);

// Returns a hit on up to three lines: "PERCENT NAME", the title and the snippet, both indented.
// With `coloured`, terminal colours set them apart, and matches are bold; without, [matches] stand
// in brackets. Control characters are spelled out.
std::string RichLines(const ShownHit& hit, bool coloured);

// Returns the tree with one line for each part, indented by its depth: what it is, how many
// documents it finds and the microseconds it took.
std::string ExplanationLines(const kestan::search::Explanation& explanation);

// Returns the report as one JSON object and a line feed; docs/queries.md gives its fields. Bytes
// that are not UTF-8 become U+FFFD.
std::string AsJson(const SearchReport& report);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_SEARCH_REPORT_H_
