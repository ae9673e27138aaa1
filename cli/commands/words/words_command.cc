// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "cli/commands/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/index_errors.h"
#include "cli/index/opened_reader.h"

namespace kestan_cli {
namespace {

using kestan::search::TermInfo;

// How many documents a word may be in.
struct Range {
  std::uint64_t low = 0;
  std::uint64_t high = 0;
};

constexpr double kMostDocuments = 1e15;

// Reads a bound on the number of documents: a share of `documents` below 1, rounded, or a count.
//   Throws   CommandError for what is neither.
std::uint64_t BoundOf(const std::string& option, const std::string& text, std::uint64_t documents) {
  double bound = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), bound);
  const bool is_number = error == std::errc() && end == text.data() + text.size();
  if (!is_number || !(bound >= 0 && bound <= kMostDocuments)) {
    throw CommandError(option + " takes a count from 1 on or a share below 1, not " + Quoted(text));
  }
  return static_cast<std::uint64_t>(bound < 1 ? bound * static_cast<double>(documents) + 0.5
                                              : bound);
}

Range RangeOf(const Values& values, std::uint64_t documents) {
  Range range{0, documents};
  if (values.Has("--at-least")) {
    range.low = BoundOf("--at-least", values.Text("--at-least"), documents);
  }
  if (values.Has("--at-most")) {
    range.high = BoundOf("--at-most", values.Text("--at-most"), documents);
  }
  return range;
}

void KeepInRange(Range range, std::vector<TermInfo>* words) {
  const auto is_out = [range](const TermInfo& word) {
    return word.documents < range.low || word.documents > range.high;
  };
  words->erase(std::remove_if(words->begin(), words->end(), is_out), words->end());
}

// Puts the most frequent words first; of equal ones, the order of their bytes stays.
std::vector<TermInfo> MostFrequentFirst(std::vector<TermInfo> words) {
  std::stable_sort(words.begin(), words.end(), [](const TermInfo& left, const TermInfo& right) {
    return left.documents > right.documents;
  });
  return words;
}

Json JsonOf(const std::vector<TermInfo>& words) {
  Json list = Json::array();
  for (const TermInfo& word : words) {
    list.push_back({{"word", word.term}, {"documents", word.documents}});
  }
  return list;
}

std::string CountsOf(const std::vector<TermInfo>& words) {
  std::string text;
  for (const TermInfo& word : words) {
    text += std::to_string(word.documents) + " " + word.term + "\n";
  }
  return text;
}

std::string TextOf(const std::vector<TermInfo>& words) {
  std::string text;
  for (const TermInfo& word : words) text += word.term + "\n";
  return text;
}

int RunWords(const Values& values) {
  const std::string index = values.Text("INDEX");
  const kestan::search::IndexReader reader = OpenReader(index);
  const Range range = RangeOf(values, reader.Statistics().documents);
  std::vector<TermInfo> words = ValueOf(reader.Terms(""), index);
  KeepInRange(range, &words);
  PrintReport(
      ReportFormatOf(values),
      [&] {
        return JsonReport({{"words", JsonOf(MostFrequentFirst(std::move(words)))}});
      },
      [&] {
        return values.Has("--counts") ? CountsOf(MostFrequentFirst(std::move(words)))
                                      : TextOf(words);
      });
  return kDone;
}

}  // namespace

Command WordsCommand() {
  return {
      "words",
      "List the words of an index.",
      {IndexArgument()},
      {{"--at-least", "BOUND", "only words in at least BOUND documents; below 1, a share of all"},
       {"--at-most", "BOUND", "only words in at most BOUND documents; below 1, a share of all"},
       {"--counts", "", "print \"DOCUMENTS WORD\", the most frequent first"},
       JsonOption()},
      "",
      {"kestan words my.index --at-least 0.5 --counts"},
      RunWords};
}

}  // namespace kestan_cli
