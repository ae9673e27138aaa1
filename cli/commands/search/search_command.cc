// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/search_command.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <utility>

#include "cli/commands/commands.h"
#include "cli/commands/search/filters/document_facts.h"
#include "cli/commands/search/filters/query_filters.h"
#include "cli/commands/search/filters/search_filter.h"
#include "cli/commands/search/search_report.h"
#include "cli/console/columns.h"
#include "cli/console/diagnostics.h"
#include "cli/console/interruption.h"
#include "cli/console/message.h"
#include "cli/extract/indexed_text.h"
#include "cli/index/document_names.h"
#include "cli/index/index_errors.h"
#include "cli/index/opened_reader.h"

namespace kestan_cli {
namespace {

using kestan::search::Fragment;
using kestan::search::Hit;
using kestan::search::IndexReader;
using kestan::search::SearchResults;
using kestan::search::WordsMean;

bool IsSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

bool IsDumbTerminal() {
  const char* const terminal = std::getenv("TERM");
  return terminal != nullptr && std::string(terminal) == "dumb";
}

bool IsColoured(Colour colour) {
  if (colour != Colour::kAuto) return colour == Colour::kAlways;
  return OutputIsTerminal() && !IsSet("NO_COLOR") && !IsDumbTerminal();
}

// Returns whether hits are shown with their titles and snippets.
bool IsRich(const SearchOptions& options) {
  if (options.format == ReportFormat::kJson || options.nul || options.names_only) return false;
  return options.snippets || OutputIsTerminal();
}

// Returns whether a person reads the answer: a screenful of hits, and lines that fit.
bool IsScreen(const SearchOptions& options) {
  return IsRich(options) && !options.count && OutputIsTerminal();
}

// Returns the filters of a query as they can be written: "type:pdf NOT path:old".
std::string FiltersOf(const FilteredQuery& query) {
  std::string text;
  for (const QueryFilter& filter : query.filters) {
    text += (text.empty() ? "" : " ") + std::string(filter.excludes ? "NOT " : "") + filter.text;
  }
  return text;
}

constexpr std::size_t kAllHits = 0;
constexpr std::size_t kHitsOfAScreen = 10;

std::size_t LimitOf(const SearchOptions& options) {
  return options.limit.value_or(IsScreen(options) ? kHitsOfAScreen : kAllHits);
}

// One search. Keeps what it found.
class Search {
 public:
  explicit Search(const SearchOptions& options)
      : options_(options),
        query_(TakeFilters(options.query)),
        filter_(query_.filters, std::time(nullptr)),
        reader_(OpenReader(options.indexes)),
        texts_(options.converters) {
    if (query_.words.empty()) query_.words = filter_.QueryForTitles();
  }

  // Returns the answer, without the hits.
  SearchReport Run() {
    SearchReport report;
    report.query = options_.query;
    report.notes = query_.notes;
    if (options_.explain) Explain(&report);
    if (!CountAlone(&report)) Find(&report);
    const auto took = std::chrono::steady_clock::now() - start_;
    report.milliseconds = static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(took).count());
    return report;
  }

  // The hits to show, in order.
  const std::vector<Hit>& hits() const { return results_.hits; }

  ShownHit Show(const Hit& hit, bool with_snippet) {
    ShownHit shown;
    shown.hit = hit;
    shown.path = names_(hit.name);
    if (options_.indexes.size() > 1) shown.index = options_.indexes[hit.index];
    const auto document = ValueOf(reader_.FindDocument(hit), Index());
    DocumentFacts facts = FactsOf(document.name, document.host_data);
    shown.date = facts.date;
    shown.from = std::move(facts.from);
    if (with_snippet) shown.snippet = SnippetOf(document);
    return shown;
  }

  std::string PathOf(const Hit& hit) const { return names_(hit.name); }

 private:
  const std::string& Index() const { return options_.indexes.front(); }

  bool NeedsTitles() const { return options_.format == ReportFormat::kJson || IsRich(options_); }

  kestan::search::SearchOptions SearchIn() const {
    kestan::search::SearchOptions options;
    options.words = options_.words;
    options.limit = options_.order == HitOrder::kBest ? LimitOf(options_) : kAllHits;
    if (options_.count) options.limit = 1;
    options.with_titles = NeedsTitles();
    if (!filter_.empty()) {
      options.filter = [this](const auto& document) { return filter_.Passes(document); };
    }
    return options;
  }

  void Explain(SearchReport* report) const {
    auto explanation = ValueOf(reader_.Explain(query_.words, SearchIn()), Index());
    if (explanation.part.empty()) return;
    if (!filter_.empty()) explanation.note = FiltersOf(query_);
    report->explanation = std::move(explanation);
  }

  // Counts the documents where nothing else is asked for and there are any: ranking takes longer.
  bool CountAlone(SearchReport* report) const {
    if (!options_.count || options_.format == ReportFormat::kJson) return false;
    report->total = ValueOf(reader_.Count(query_.words, SearchIn()), Index());
    return report->total > 0;
  }

  void Find(SearchReport* report) {
    results_ = ValueOf(reader_.Search(query_.words, SearchIn()), Index());
    report->total = results_.total;
    report->notes.insert(report->notes.end(), results_.notes.begin(), results_.notes.end());
    report->suggestions = results_.suggestions;
    if (options_.order == HitOrder::kName) SortByName();
    if (options_.count) results_.hits.clear();
    const std::size_t limit = LimitOf(options_);
    if (limit != kAllHits && results_.hits.size() > limit) results_.hits.resize(limit);
  }

  void SortByName() {
    std::stable_sort(results_.hits.begin(), results_.hits.end(),
                     [](const Hit& left, const Hit& right) { return left.name < right.name; });
  }

  std::vector<Fragment> SnippetOf(const kestan::search::DocumentInfo& document) {
    if (results_.matched_terms.empty()) return {};
    const auto text = TextOf(document);
    if (!text) return {};
    return ValueOf(IndexReader::Snippet(results_, *text), Index());
  }

  // A signal must not leave a converter behind.
  std::optional<std::string> TextOf(const kestan::search::DocumentInfo& document) {
    const Interruption interruption;
    auto text = texts_.Read({document.name, document.host_data, document.title, document.summary});
    Interruption::Check();
    return text;
  }

  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  const SearchOptions& options_;
  FilteredQuery query_;
  const SearchFilter filter_;
  const IndexReader reader_;
  const ShownNames names_;
  IndexedTextReader texts_;
  SearchResults results_;
};

// Prints the explanation, notes and suggestions.
void PrintDiagnosticsOf(const SearchReport& report) {
  if (report.explanation) {
    for (const std::string& line : ExplanationLines(*report.explanation)) PrintDiagnostic(line);
  }
  for (const std::string& note : report.notes) PrintDiagnostic("note: " + note);
  const std::string words = Joined(report.suggestions, ", ");
  if (report.total == 0 && !words.empty()) PrintDiagnostic("did you mean: " + words);
}

void PrintRichHits(Search& search, const SearchOptions& options, const SearchReport& report) {
  const bool coloured = IsColoured(options.colour);
  const bool fits = IsScreen(options);
  const std::size_t columns = fits ? ColumnsOfTerminal(STDOUT_FILENO) : kAnyColumns;
  for (const Hit& hit : search.hits()) {
    // One by one: for each snippet a file is read, and there may be many.
    ShownHit shown = search.Show(hit, true);
    if (!fits) {
      shown.date.reset();
      shown.from.clear();
    }
    PrintPainted(RichLines(shown, coloured, columns));
  }
  if (fits) PrintPainted(TotalLine(report, search.hits().size(), coloured));
}

void PrintPlainHits(const Search& search, const SearchOptions& options) {
  constexpr std::size_t kBytesAtATime = std::size_t{1} << 16;
  std::string lines;
  for (const Hit& hit : search.hits()) {
    if (options.nul) {
      lines.append(search.PathOf(hit)).push_back('\0');
    } else if (options.names_only) {
      lines.append(search.PathOf(hit)).append("\n");
    } else {
      lines += PlainLine(hit.percent, search.PathOf(hit));
    }
    if (lines.size() < kBytesAtATime) continue;
    Print(lines);
    lines.clear();
  }
  if (!lines.empty()) Print(lines);
}

void PrintJson(Search& search, const SearchOptions& options, SearchReport* report) {
  for (const Hit& hit : search.hits()) report->hits.push_back(search.Show(hit, options.snippets));
  Print(AsJson(*report));
}

void PrintText(Search& search, const SearchOptions& options, const SearchReport& report) {
  PrintDiagnosticsOf(report);
  if (options.count) {
    Print(std::to_string(report.total) + "\n");
  } else if (IsRich(options)) {
    PrintRichHits(search, options, report);
  } else {
    PrintPlainHits(search, options);
  }
}

}  // namespace

int RunSearch(const SearchOptions& options) {
  Search search(options);
  SearchReport report = search.Run();
  if (options.format == ReportFormat::kJson) {
    PrintJson(search, options, &report);
  } else {
    PrintText(search, options, report);
  }
  return report.total == 0 ? kNoHits : kDone;
}

namespace {

Colour ColourOf(const std::string& name) {
  if (name == "always") return Colour::kAlways;
  if (name == "never") return Colour::kNever;
  return Colour::kAuto;
}

WordsMean WordsMeanOf(const Values& values) {
  if (values.Has("--all") && values.Has("--any")) {
    throw CommandError("--all and --any contradict each other");
  }
  if (values.Has("--all")) return WordsMean::kAll;
  return values.Has("--any") ? WordsMean::kAny : WordsMean::kBest;
}

// Takes the indexes and the query from the arguments. Where options name the indexes, all others
// are the query.
void ReadQuery(const Values& values, SearchOptions* options) {
  Arguments words = values.All("QUERY");
  options->indexes = values.All("--index");
  if (options->indexes.empty()) {
    options->indexes = values.All("INDEX");
  } else {
    const Arguments first = values.All("INDEX");
    words.insert(words.begin(), first.begin(), first.end());
  }
  if (options->indexes.empty()) throw CommandError("INDEX is required");
  if (words.empty()) throw CommandError("QUERY is required");
  options->query = Joined(words, " ");
}

int RunSearchCommand(const Values& values) {
  SearchOptions options;
  ReadQuery(values, &options);
  options.words = WordsMeanOf(values);
  if (values.Text("--order") == "name") options.order = HitOrder::kName;
  if (values.Has("--limit")) {
    constexpr long long kMostHits = std::numeric_limits<std::int32_t>::max();
    options.limit = static_cast<std::size_t>(values.Number("--limit", 0, 0, kMostHits));
  }
  options.names_only = values.Has("--names-only");
  options.nul = values.Has("--null");
  options.count = values.Has("--count");
  options.format = ReportFormatOf(values);
  options.snippets = values.Has("--snippets");
  options.converters = values.All("--converter");
  options.explain = values.Has("--explain");
  options.colour = ColourOf(values.Text("--color"));
  return RunSearch(options);
}

std::vector<Option> SearchCommandOptions() {
  return {
      {"-i,--index", "INDEX", "search this index; may be given again, to search several as one"},
      {"--all", "", "words side by side mean AND; each as it is written, without other forms"},
      {"--any", "", "words side by side mean OR"},
      {"--limit", "N", "show at most N documents; 0: all. Without it, a terminal shows 10"},
      {"--order", "ORDER", "how documents are sorted", {"best", "name"}},
      {"-l,--names-only", "", "print names only"},
      {"-0,--null", "", "print names only, each ended by a NUL"},
      {"--count", "", "print only how many documents there are"},
      {"--snippets", "", "print titles and snippets too, as on a terminal"},
      {"--converter", "EXT=COMMAND",
       "for snippets, have COMMAND print the text of files that end in .EXT, as for `index`"},
      {"--color", "WHEN", "whether to use colours", {"auto", "always", "never"}},
      {"--explain", "", "tell how the query was read and what each part of it found"},
      JsonOption()};
}

}  // namespace

Command SearchCommand() {
  Command command{
      "search",
      "Find documents, the best first.",
      {{"INDEX", "the index, unless options name some", Positional::Count::kOptional},
       {"QUERY",
        "words; side by side they mean all of them or, where no document has all, some. Operators, "
        "the tightest first: NOT or -, NEAR/k (at most k words apart), AND, OR; \"words in a "
        "row\", prefix*, fuzzy~1 and parentheses. Filters: path:docs, type:pdf, after:2024-03, "
        "before:2025, title:linux, from:ann, each also after NOT or -",
        Positional::Count::kAny}},
      SearchCommandOptions(),
      "Put -- before words that are spelled like an option. Exit status: 0 with hits, 1 without, 2 "
      "if something is wrong.",
      {"kestan search my.index 'shell NEAR/3 script NOT (zsh OR fish)'",
       "kestan search -i notes.index -i mail.index annual report",
       "kestan search mail.index 'invoice from:ann after:2024 -type:html'"},
      RunSearchCommand};
  command.takes_dashes = true;
  command.starts = {"path:", "type:", "after:", "before:", "title:", "from:"};
  return command;
}

}  // namespace kestan_cli
