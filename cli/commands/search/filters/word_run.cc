// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/word_run.h"

#include <kestan/search.h>

#include <cstddef>
#include <utility>

#include "cli/console/message.h"

namespace kestan_cli {

using kestan::search::AnalyzedWord;
using kestan::search::Analyzer;
using kestan::search::Status;

namespace {

void Check(const Status& status) {
  if (!status.ok()) throw CommandError(status.message());
}

}  // namespace

struct WordRun::Placed {
  std::string word;
  std::size_t start;  // the bytes that it was made of
  std::size_t end;
};

WordRun::WordRun(std::string_view text) {
  auto groups = Analyzer().AnalyzeQuery(text);
  Check(groups.status());
  for (auto& group : *groups) {
    for (std::string& word : group.words) words_.push_back({std::move(word)});
    words_.back().is_prefix = group.last_is_prefix;
  }
  if (!words_.empty() && text.back() == '*') words_.back().is_prefix = true;
}

bool WordRun::StandsIn(std::string_view text) const {
  std::vector<Placed> placed;
  Check(Analyzer().ForEachWord(text, [&placed](const AnalyzedWord& word) {
    placed.push_back({std::string(word.word), word.start, word.end});
    return true;
  }));
  for (std::size_t at = 0; at < placed.size(); ++at) {
    if (StartsAt(placed, at)) return true;
  }
  return false;
}

// Words may overlap, such as pairs of Chinese characters: the next one is the next in the list, or
// the first that begins after the end of the last.
bool WordRun::StartsAt(const std::vector<Placed>& text, std::size_t at) const {
  const auto is_at = [&text](const Word& word, std::size_t place) {
    if (place >= text.size()) return false;
    const std::string& found = text[place].word;
    return word.is_prefix ? found.compare(0, word.word.size(), word.word) == 0 : found == word.word;
  };
  for (std::size_t i = 0; i < words_.size(); ++i) {
    if (i > 0) {
      const std::size_t end = text[at].end;
      ++at;
      while (!is_at(words_[i], at) && at < text.size() && text[at].start < end) ++at;
    }
    if (!is_at(words_[i], at)) return false;
  }
  return !words_.empty();
}

std::string WordRun::AsQuery() const {
  std::string query;
  for (const Word& word : words_) {
    const auto readable = Analyzer::Decode(word.word);
    Check(readable.status());
    query += (query.empty() ? "" : " AND ") + *readable + (word.is_prefix ? "*" : "");
  }
  return query;
}

}  // namespace kestan_cli
