#include <kestan/results.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/commands/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/opened_index.h"
#include "search/query/evaluation/index_words.h"

namespace kestan_cli {
namespace {

// The upper bound that leaves out no word. A negative one stands for the number of documents, but a
// word of one letter may have postings of more: those of removed documents stay.
constexpr double kAnyFrequency = 4294967295.0;

// Reads a bound on document frequencies as the engine takes it: a share below 1, a count from 1 on.
double BoundOf(const Values& values, const std::string& option, double fallback) {
  if (!values.Has(option)) return fallback;
  const std::string text = values.Text(option);
  double bound = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), bound);
  const bool is_number = error == std::errc() && end == text.data() + text.size();
  if (is_number && bound >= 0 && bound <= kestan::kMaxCode) return bound;
  throw CommandError(option + " takes a count from 1 to " + std::to_string(kestan::kMaxCode) +
                     " or a share below 1, not " + Quoted(text));
}

struct CountedWord {
  std::string word;
  std::size_t documents = 0;  // without removed ones
};

using CountedWords = std::vector<CountedWord>;

// Returns the words that `range` of documents hold, removed ones among them, in order of their
// bytes.
std::vector<std::string> WordsIn(Kestan& engine, kestan::FrequencyRange range) {
  std::vector<std::string> words;
  kestan::ReaderOf(engine).ForEachCommonWord(range, [&](std::string_view word, std::size_t) {
    words.emplace_back(word);
    return true;
  });
  std::sort(words.begin(), words.end());
  return words;
}

// Counts the documents of each word, and puts the most frequent words first.
CountedWords CountDocuments(Kestan& engine, const std::vector<std::string>& words) {
  kestan::IndexReader& reader = kestan::ReaderOf(engine);
  CountedWords counted;
  for (const std::string& word : words) {
    counted.push_back({word, kestan::search::CountDocuments(reader, word)});
  }
  std::stable_sort(counted.begin(), counted.end(), [](const auto& left, const auto& right) {
    return left.documents > right.documents;
  });
  return counted;
}

Json JsonOf(const CountedWords& words) {
  Json list = Json::array();
  for (const auto& [word, documents] : words) {
    list.push_back({{"word", word}, {"documents", documents}});
  }
  return list;
}

std::string TextOf(const CountedWords& words) {
  std::string text;
  for (const auto& [word, documents] : words) {
    text += std::to_string(documents) + " " + word + "\n";
  }
  return text;
}

std::string TextOf(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += word + "\n";
  return text;
}

int RunWords(Kestan& engine, const Values& values) {
  const double low = BoundOf(values, "--at-least", 1);
  const double high = BoundOf(values, "--at-most", kAnyFrequency);
  const OpenedIndex opened(engine, values.Text("INDEX"), Access::kRead);
  const std::vector<std::string> words = WordsIn(engine, {low, high});
  const auto counted = [&] { return CountDocuments(engine, words); };
  PrintReport(
      ReportFormatOf(values),
      [&] {
        return JsonReport({{"words", JsonOf(counted())}});
      },
      [&] { return values.Has("--counts") ? TextOf(counted()) : TextOf(words); });
  opened.CheckRead();
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
      "The bounds count removed documents too, until the index is shrunk.",
      {"kestan words my.index --at-least 0.5 --counts"},
      RunWords};
}

}  // namespace kestan_cli
