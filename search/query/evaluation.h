// From a query to the documents that it finds.
#ifndef KESTAN_SEARCH_QUERY_EVALUATION_H_
#define KESTAN_SEARCH_QUERY_EVALUATION_H_

#include <kestan/kestan.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "search/query/query.h"
#include "search/query/result_set.h"
#include "search/vocabulary/vocabulary.h"

namespace kestan::search {

// How many words of the index one prefix* or fuzzy~ stands for at most.
constexpr std::size_t kMaxExpansions = 100;

// How a part of a query was read, and what became of it.
struct Explanation {
  std::string label;              // a word, or an operator
  std::size_t documents = 0;      // how many it finds
  std::int64_t microseconds = 0;  // what it took, without the parts below it
  std::string note;               // what else there is to say; mostly empty
  std::vector<Explanation> parts;
};

// A part of a query, and how often it comes among others.
struct Repeated {
  const Query* query = nullptr;
  std::size_t times = 1;
};

// Returns each of `queries` once, in the order in which they came first. Borrows them.
std::vector<Repeated> Distinct(const std::vector<const Query*>& queries);

// Evaluates the parts of one query in the engine, and remembers what it came across.
class Evaluator {
 public:
  // Borrows `engine`, whose index is open and has, or had, a document.
  explicit Evaluator(Kestan& engine) : engine_(engine) {}

  // Evaluates `query`. Operands of AND or of OR that are equal count once. Fills `*explanation`,
  // which may be null: counting documents takes time.
  ResultSet Evaluate(const Query& query, Explanation* explanation);

  // The words of the index that the query asks for, expansions among them; not those under NOT.
  const std::set<std::string>& sought() const { return sought_; }

  // One sentence for each expansion that was cut to kMaxExpansions, and for an index without the
  // positions that the query needs.
  const std::vector<std::string>& notes() const { return notes_; }

  // Returns suggestions for each word of `query`, outside NOT, that no document has;
  // for ten such words at most.
  std::vector<std::string> SuggestionsFor(const Query& query);

 private:
  // What a prefix* or fuzzy~ stands for.
  struct Expansion {
    std::vector<std::string> words;
    std::string note;
  };

  ResultSet EvaluateNode(const Query& query, Explanation* explanation);
  ResultSet EvaluateOperand(const Repeated& operand, Explanation* explanation);
  ResultSet EvaluateNear(const Query& query, Explanation* explanation);
  ResultSet EvaluateAnd(const Query& query, Explanation* explanation);
  ResultSet EvaluateOr(const Query& query, Explanation* explanation);
  ResultSet Negate(const Query& query, Explanation* explanation);
  ResultSet Find(const std::string& word);
  ResultSet AnyOf(const std::vector<std::string>& words);
  std::vector<std::string> Expanded(const Query& query, Explanation* explanation);
  const Expansion& ExpansionOf(const Query& query);
  Expansion Expand(const Query& query);
  void TellOfPositions(Explanation* explanation);
  void TellOfCut(const Query& query, Expansion* expansion, std::size_t found);
  const Vocabulary& Words();
  std::size_t DocumentsWith(const std::string& word);

  Kestan& engine_;
  std::optional<Vocabulary> words_;
  std::optional<ResultSet> documents_;  // all whose codes are not free
  std::map<std::tuple<Query::Kind, std::string, int>, Expansion> expansions_;
  std::map<std::string, std::size_t> documents_with_;  // those that were counted
  std::set<std::string> sought_;
  std::vector<std::string> notes_;
  bool told_of_positions_ = false;
  bool negated_ = false;
  std::int64_t counting_ = 0;  // microseconds
};

// Returns the parts of `query` that speak for a document, each of which can be evaluated by itself:
// what AND and OR join, without what is under NOT.
std::vector<const Query*> PartsThatSpeakFor(const Query& query);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_EVALUATION_H_
