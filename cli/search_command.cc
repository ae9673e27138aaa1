#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "commands.h"
#include "opened_index.h"
#include "output.h"
#include "query.h"

namespace kestan_cli {
namespace {

// A result set of the engine's, freed when it goes. The id -1 stands for a set without documents:
// that is how the engine answers for a word that the index lacks, and how it takes one.
class ResultSet {
 public:
  ResultSet(Kestan& engine, int id) : engine_(&engine), id_(id) {}
  ~ResultSet() { engine_->FreeQueryResult(id_); }
  ResultSet(ResultSet&& other) noexcept
      : engine_(other.engine_), id_(std::exchange(other.id_, -1)) {}
  ResultSet& operator=(ResultSet&& other) noexcept {
    std::swap(engine_, other.engine_);
    std::swap(id_, other.id_);
    return *this;
  }

  int id() const { return id_; }

 private:
  Kestan* engine_;
  int id_;
};

ResultSet Evaluate(Kestan& engine, const Query& query);

int Combine(Kestan& engine, const Query& query, int so_far, int next, int distance_words) {
  if (query.kind == Query::Kind::kOr) return engine.QueryOr(so_far, next);
  return engine.QueryAnd(so_far, next, query.kind == Query::Kind::kNear ? distance_words : 0);
}

ResultSet EvaluateOperands(Kestan& engine, const Query& query) {
  ResultSet so_far = Evaluate(engine, query.operands.front());
  for (std::size_t i = 1; i < query.operands.size(); ++i) {
    const Query& operand = query.operands[i];
    const ResultSet next = Evaluate(engine, operand);
    so_far =
        ResultSet(engine, Combine(engine, query, so_far.id(), next.id(), operand.distance_words));
  }
  return so_far;
}

ResultSet Evaluate(Kestan& engine, const Query& query) {
  if (query.kind == Query::Kind::kWord) {
    return {engine, engine.QueryWord(query.word.c_str())};
  }
  if (query.kind == Query::Kind::kNot) {
    const ResultSet operand = Evaluate(engine, query.operands.front());
    return {engine, engine.QueryNegate(operand.id())};
  }
  return EvaluateOperands(engine, query);
}

using Hit = std::pair<int, std::string_view>;  // the percentage, and the line that begins with it

std::vector<Hit> HitsIn(std::string_view listing) {
  std::vector<Hit> hits;
  while (!listing.empty()) {
    const std::size_t end = std::min(listing.find('\n'), listing.size() - 1) + 1;
    const std::string_view line = listing.substr(0, end);
    int percent = 0;
    std::from_chars(line.data(), line.data() + line.size(), percent);
    hits.emplace_back(percent, line);
    listing.remove_prefix(end);
  }
  return hits;
}

// Returns `listing` with the best first; among equals, the document added first stays first.
std::string BestFirst(std::string_view listing) {
  std::vector<Hit> hits = HitsIn(listing);
  std::stable_sort(hits.begin(), hits.end(),
                   [](const Hit& left, const Hit& right) { return left.first > right.first; });
  std::string lines;
  for (const auto& [percent, line] : hits) lines += line;
  return lines;
}

std::string Hits(OpenedIndex& index, const Query& query) {
  // An index that never had a document has nothing to offer, and the engine would end the process
  // at a NOT.
  if (!index.facts().had_documents) return "";
  const ResultSet result = Evaluate(index.engine(), query);
  return BestFirst(index.engine().QueryResults(result.id()));
}

std::string Joined(const Arguments& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

int RunSearch(Kestan& engine, const Values& values) {
  const Query parsed = ParseQuery(Joined(values.All("QUERY")));
  OpenedIndex opened(engine, values.Text("INDEX"), Access::kRead);
  const std::string hits = Hits(opened, parsed);
  Print(hits);
  return hits.empty() ? kNoHits : kDone;
}

}  // namespace

std::vector<Command> SearchCommands() {
  return {
      {"search",
       "Find documents, the best first.",
       {IndexArgument(),
        {"QUERY",
         "words; side by side they mean AND. Operators, the tightest first: NOT, NEAR/k (at most "
         "k words apart), AND, OR; and parentheses",
         Positional::Count::kOneOrMore}},
       {},
       "Exit status: 0 with hits, 1 without, 2 if something is wrong.",
       {"kestan search my.index 'shell NEAR/3 script NOT (zsh OR fish)'"},
       RunSearch}};
}

}  // namespace kestan_cli
