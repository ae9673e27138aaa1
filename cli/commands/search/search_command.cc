#include "cli/commands/search/search_command.h"

#include <kestan/results.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/commands/commands.h"
#include "cli/commands/search/search_report.h"
#include "cli/console/diagnostics.h"
#include "cli/console/message.h"
#include "cli/extract/indexed_text.h"
#include "cli/files/fingerprint.h"
#include "cli/index/opened_index.h"
#include "search/query/clauses.h"
#include "search/query/distinct.h"
#include "search/query/evaluation/evaluator.h"
#include "search/query/query_parser.h"
#include "search/ranking/listing/relevance.h"

namespace kestan_cli {
namespace {

using kestan::search::DefaultOperator;
using kestan::search::Distinct;
using kestan::search::EngineHit;
using kestan::search::Evaluator;
using kestan::search::Explanation;
using kestan::search::Fragment;
using kestan::search::HitOrder;
using kestan::search::HitsIn;
using kestan::search::MakeSnippet;
using kestan::search::ParseQuery;
using kestan::search::Query;
using kestan::search::RankedClause;
using kestan::search::ResultSet;
using kestan::search::ScoringClauses;
using kestan::search::TermFrequenciesIn;

std::string TextOrEmpty(const char* text) { return text == nullptr ? "" : text; }

bool IsColoured(Colour colour) {
  if (colour != Colour::kAuto) return colour == Colour::kAlways;
  const std::string no_color = TextOrEmpty(std::getenv("NO_COLOR"));
  const std::string terminal = TextOrEmpty(std::getenv("TERM"));
  return OutputIsTerminal() && no_color.empty() && terminal != "dumb";
}

// One search in an index that has, or once had, a document.
class Search {
 public:
  Search(OpenedIndex& index, const SearchOptions& options)
      : index_(index),
        engine_(index.engine()),
        options_(options),
        evaluator_(engine_),
        texts_(options.converters) {}

  SearchReport Run(const Query& query) {
    SearchReport report;
    if (options_.explain) report.explanation.emplace();
    Explanation* const explanation = options_.explain ? &*report.explanation : nullptr;
    {
      const ResultSet found = evaluator_.Evaluate(query, explanation);
      hits_ = HitsIn(found);
    }
    report.notes = evaluator_.notes();
    report.total = hits_.size();
    if (hits_.empty()) report.suggestions = evaluator_.SuggestionsFor(query);
    if (!options_.count) Rank(query);
    return report;
  }

  // The hits to show, in order.
  const std::vector<EngineHit>& hits() const { return hits_; }

  ShownHit Show(const EngineHit& hit, bool with_snippet) {
    ShownHit shown;
    shown.hit = hit;
    shown.title = TextOrEmpty(engine_.DBGetTitle(hit.name.c_str()));
    if (with_snippet) shown.snippet = SnippetOf(hit.name, shown.title);
    return shown;
  }

 private:
  void Rank(const Query& query) {
    if (options_.default_operator == DefaultOperator::kOr && options_.order != HitOrder::kScore) {
      RankByRelevance(query);
      if (options_.order != HitOrder::kBest) Sort(options_.order, &hits_);
    } else {
      Sort(options_.order, &hits_);
    }
    if (options_.limit && *options_.limit < hits_.size()) hits_.resize(*options_.limit);
  }

  void RankByRelevance(const Query& query) {
    std::vector<RankedClause> clauses;
    for (const auto& [clause, times] : Distinct(ScoringClauses(query))) {
      const auto documents = [this, clause = clause] {
        return TermFrequenciesIn(evaluator_.Evaluate(*clause, nullptr), *clause);
      };
      clauses.push_back({documents, times});
    }
    const auto size_of = [this](const std::string& name) -> std::optional<std::uint64_t> {
      const auto state = FileStateIn(TextOrEmpty(engine_.DBGetUser(name.c_str())));
      if (!state) return std::nullopt;
      return state->bytes;
    };
    SortByRelevance(clauses, index_.counts().documents, size_of, &hits_);
  }

  std::vector<Fragment> SnippetOf(const std::string& name, const std::string& title) {
    const auto text = texts_.Read({name, TextOrEmpty(engine_.DBGetUser(name.c_str())), title,
                                   TextOrEmpty(engine_.DBGetSummary(name.c_str()))});
    if (!text) return {};
    return MakeSnippet(*text, evaluator_.matched_terms());
  }

  OpenedIndex& index_;
  Kestan& engine_;
  const SearchOptions& options_;
  Evaluator evaluator_;
  IndexedTextReader texts_;
  std::vector<EngineHit> hits_;
};

// Prints the explanation, notes and suggestions.
void PrintDiagnosticsOf(const SearchReport& report) {
  if (report.explanation) {
    for (const std::string& line : ExplanationLines(*report.explanation)) PrintDiagnostic(line);
  }
  for (const std::string& note : report.notes) PrintDiagnostic("note: " + note);
  const std::string words = Joined(report.suggestions, ", ");
  if (!words.empty()) PrintDiagnostic("did you mean: " + words);
}

void PrintHits(Search& search, const SearchOptions& options) {
  const bool rich = options.snippets || OutputIsTerminal();
  const bool coloured = IsColoured(options.colour);
  std::string lines;
  for (const EngineHit& hit : search.hits()) {
    if (options.nul) {
      lines.append(hit.name).push_back('\0');
    } else if (options.names_only) {
      lines.append(hit.name).append("\n");
    } else if (!rich) {
      lines += PlainLine(hit);
    } else {
      // One by one: for each snippet a file is read, and there may be many.
      PrintPainted(RichLines(search.Show(hit, true), coloured));
    }
  }
  if (!lines.empty()) Print(lines);
}

void PrintJson(Search& search, const SearchOptions& options, SearchReport* report) {
  if (!options.count) {
    for (const EngineHit& hit : search.hits()) {
      report->hits.push_back(search.Show(hit, options.snippets));
    }
  }
  Print(AsJson(*report));
}

void PrintText(Search& search, const SearchOptions& options, const SearchReport& report) {
  PrintDiagnosticsOf(report);
  if (options.count) {
    Print(std::to_string(report.total) + "\n");
  } else {
    PrintHits(search, options);
  }
}

int FindAndPrint(OpenedIndex& index, const Query& query, const SearchOptions& options) {
  Search search(index, options);
  SearchReport report = search.Run(query);
  report.query = options.query;
  if (options.format == ReportFormat::kJson) {
    PrintJson(search, options, &report);
  } else {
    PrintText(search, options, report);
  }
  index.CheckRead();
  return report.total == 0 ? kNoHits : kDone;
}

// Prints the answer to a query that no document can match.
int PrintNothing(const SearchOptions& options, const std::vector<std::string>& notes) {
  SearchReport report;
  report.query = options.query;
  report.notes = notes;
  if (options.format != ReportFormat::kJson) {
    for (const std::string& note : notes) PrintDiagnostic(note);
  }
  PrintReport(
      options.format, [&] { return AsJson(report); }, [&] { return options.count ? "0\n" : ""; });
  return kNoHits;
}

}  // namespace

int RunSearch(Kestan& engine, const std::string& index, const SearchOptions& options) {
  OpenedIndex opened(engine, index, Access::kRead);
  const std::optional<Query> query = ParseQuery(options.query, options.default_operator);
  if (!query) return PrintNothing(options, {"the query holds no letters to search for"});
  // An index that never had a document matches nothing, and the engine ends the process at a NOT.
  if (!opened.counts().had_documents) return PrintNothing(options, {});
  return FindAndPrint(opened, *query, options);
}

namespace {

HitOrder OrderOf(const std::string& name) {
  if (name == "score") return HitOrder::kScore;
  if (name == "name") return HitOrder::kName;
  if (name == "code") return HitOrder::kCode;
  return HitOrder::kBest;
}

Colour ColourOf(const std::string& name) {
  if (name == "always") return Colour::kAlways;
  if (name == "never") return Colour::kNever;
  return Colour::kAuto;
}

int RunSearchCommand(Kestan& engine, const Values& values) {
  SearchOptions options;
  options.query = Joined(values.All("QUERY"), " ");
  if (values.Has("--any")) options.default_operator = DefaultOperator::kOr;
  options.order = OrderOf(values.Text("--order"));
  if (values.Has("--limit")) {
    options.limit = static_cast<std::size_t>(values.Number("--limit", 0, 0, kestan::kMaxCode));
  }
  options.names_only = values.Has("--names-only");
  options.nul = values.Has("--null");
  options.count = values.Has("--count");
  options.format = ReportFormatOf(values);
  options.snippets = values.Has("--snippets");
  options.converters = values.All("--converter");
  options.explain = values.Has("--explain");
  options.colour = ColourOf(values.Text("--color"));
  return RunSearch(engine, values.Text("INDEX"), options);
}

std::vector<Option> SearchCommandOptions() {
  return {{"--any", "", "words side by side mean OR, and the most relevant documents come first"},
          {"--limit", "N", "show at most N documents"},
          {"--order", "ORDER", "how documents are sorted", {"best", "score", "name", "code"}},
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
      {IndexArgument(),
       {"QUERY",
        "words; side by side they mean AND. Operators, the tightest first: NOT or -, NEAR/k (at "
        "most k words apart), AND, OR; \"words in a row\", prefix*, fuzzy~1 and parentheses",
        Positional::Count::kOneOrMore}},
      SearchCommandOptions(),
      "Put -- before words that are spelled like an option. Exit status: 0 with hits, 1 without, 2 "
      "if something is wrong.",
      {"kestan search my.index 'shell NEAR/3 script NOT (zsh OR fish)'"},
      RunSearchCommand};
  command.takes_dashes = true;
  return command;
}

}  // namespace kestan_cli
