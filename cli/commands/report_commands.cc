#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>

#include "cli/app/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/console/output.h"
#include "cli/index/opened_index.h"
#include "search/text/lines.h"
#include "search/vocabulary/vocabulary.h"

namespace kestan_cli {
namespace {

using kestan::search::kAnyFrequency;
using kestan::search::SortedLines;

std::string Joined(const std::vector<std::string>& items, char end) {
  std::string text;
  for (const std::string& item : items) text.append(item) += end;
  return text;
}

Json DescriptionOf(Kestan& engine, const std::string& name) {
  Json document{{"name", name}, {"time", engine.DocumentTimestamp(name.c_str())}};
  if (const char* const title = engine.DBGetTitle(name.c_str())) document["title"] = title;
  if (const char* const summary = engine.DBGetSummary(name.c_str())) document["summary"] = summary;
  return document;
}

int RunList(Kestan& engine, const Values& values) {
  const OpenedIndex opened(engine, values.Text("INDEX"), Access::kRead);
  const std::vector<std::string> names = SortedLines(engine.ListDocuments());
  if (!values.Has("--json")) {
    Print(Joined(names, values.Has("--null") ? '\0' : '\n'));
  } else {
    Json documents = Json::array();
    for (const std::string& name : names) documents.push_back(DescriptionOf(engine, name));
    Print(JsonLine({{"schema", kJsonSchema}, {"documents", documents}}));
  }
  opened.CheckRead();
  return kDone;
}

// Reads a bound on document frequencies as the engine takes it: below 1 a share, from 1 on a count.
double BoundOf(const Values& values, const std::string& option, double fallback) {
  if (!values.Has(option)) return fallback;
  const std::string text = values.Text(option);
  double bound = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), bound);
  const bool is_number = error == std::errc() && end == text.data() + text.size();
  if (is_number && bound >= 0 && bound <= 65535) return bound;
  throw CommandError(option + " takes a count from 1 to 65535 or a share below 1, not " +
                     Quoted(text));
}

struct CountedWord {
  std::string word;
  std::size_t documents;
};

// Counts live documents; the bounds count removed ones too, until the index is shrunk.
std::vector<CountedWord> CountDocuments(Kestan& engine, const std::vector<std::string>& words) {
  std::vector<CountedWord> counted;
  for (const std::string& word : words) {
    const int id = engine.QueryWord(word.c_str());
    const std::string_view listing = engine.QueryResults(id);
    counted.push_back(
        {word, static_cast<std::size_t>(std::count(listing.begin(), listing.end(), '\n'))});
    engine.FreeQueryResult(id);
  }
  std::stable_sort(counted.begin(), counted.end(), [](const auto& left, const auto& right) {
    return left.documents > right.documents;
  });
  return counted;
}

void PrintCounts(const std::vector<CountedWord>& words, bool as_json) {
  Json list = Json::array();
  std::string lines;
  for (const auto& [word, documents] : words) {
    if (as_json) list.push_back({{"word", word}, {"documents", documents}});
    if (!as_json) lines += std::to_string(documents) + " " + word + "\n";
  }
  Print(as_json ? JsonLine({{"schema", kJsonSchema}, {"words", list}}) : lines);
}

int RunWords(Kestan& engine, const Values& values) {
  const double low = BoundOf(values, "--at-least", 1);
  const double high = BoundOf(values, "--at-most", kAnyFrequency);
  const OpenedIndex opened(engine, values.Text("INDEX"), Access::kRead);
  const std::vector<std::string> words = SortedLines(engine.CommonWords(low, high));
  if (values.Has("--counts") || values.Has("--json")) {
    PrintCounts(CountDocuments(engine, words), values.Has("--json"));
  } else {
    Print(Joined(words, '\n'));
  }
  opened.CheckRead();
  return kDone;
}

}  // namespace

std::vector<Command> ReportCommands() {
  return {
      {"list",
       "List all documents by name.",
       {IndexArgument()},
       {{"-0,--null", "", "end each name with a NUL instead of a line feed"}, JsonOption()},
       "",
       {"kestan list my.index"},
       RunList},
      {"words",
       "List the words of an index.",
       {IndexArgument()},
       {{"--at-least", "BOUND", "only words in at least BOUND documents; below 1, a share of all"},
        {"--at-most", "BOUND", "only words in at most BOUND documents; below 1, a share of all"},
        {"--counts", "", "print \"DOCUMENTS WORD\", the most frequent first"},
        JsonOption()},
       "The bounds count removed documents too, until the index is shrunk.",
       {"kestan words my.index --at-least 0.5 --counts"},
       RunWords},
  };
}

}  // namespace kestan_cli
