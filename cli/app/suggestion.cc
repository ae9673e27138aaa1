// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/suggestion.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "cli/console/ascii.h"
#include "cli/console/message.h"

namespace kestan_cli {
namespace {

constexpr std::size_t kMostLetters = 64;  // of a word that may be misspelled
constexpr std::size_t kLeastPrefix = 3;

std::string_view WithoutDashes(std::string_view word) {
  return word.substr(std::min(word.find_first_not_of('-'), word.size()));
}

// Returns how many letters have to be added, removed, replaced or swapped with the next one to make
// `to` of `from`, none of them twice.
std::size_t Edits(std::string_view from, std::string_view to) {
  using Row = std::vector<std::size_t>;
  Row before_last;
  Row last;
  Row row(to.size() + 1);
  for (std::size_t j = 0; j <= to.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= from.size(); ++i) {
    before_last = last;
    last = row;
    row[0] = i;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t replaced = last[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
      row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
      const bool is_swap = i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
      if (is_swap) row[j] = std::min(row[j], before_last[j - 2] + 1);
    }
  }
  return row.back();
}

}  // namespace

std::string MostAlike(const std::string& word, const Arguments& known) {
  const std::string typed = LowerCase(WithoutDashes(word));
  if (typed.empty() || typed.size() > kMostLetters) return "";
  std::string best;
  std::size_t best_edits = std::max<std::size_t>(typed.size() / 3, 1) + 1;
  for (const std::string& candidate : known) {
    const std::size_t edits = Edits(typed, WithoutDashes(candidate));
    if (edits >= best_edits) continue;
    best = candidate;
    best_edits = edits;
  }
  if (!best.empty() || typed.size() < kLeastPrefix) return best;
  const auto longer = std::find_if(known.begin(), known.end(), [&](const std::string& candidate) {
    return WithoutDashes(candidate).substr(0, typed.size()) == typed;
  });
  return longer != known.end() ? *longer : "";
}

std::string DidYouMean(const std::string& word, const Arguments& known) {
  const std::string meant = MostAlike(word, known);
  return meant.empty() ? "" : "; did you mean " + Quoted(meant) + "?";
}

}  // namespace kestan_cli
