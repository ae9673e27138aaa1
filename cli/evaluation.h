// From a query to the documents that it finds.
#ifndef KESTAN_CLI_EVALUATION_H_
#define KESTAN_CLI_EVALUATION_H_

#include <kestan/kestan.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "query.h"
#include "result_set.h"
#include "vocabulary.h"

namespace kestan_cli {

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

// Evaluates the parts of one query in the engine, and remembers what it came across.
class Evaluator {
 public:
  // Borrows `engine`, whose index is open and has, or had, a document.
  explicit Evaluator(Kestan& engine) : engine_(engine) {}

  // Evaluates `query`. Fills `*explanation`, which may be null: counting documents takes time.
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
  ResultSet EvaluateNode(const Query& query, Explanation* explanation);
  ResultSet EvaluateOperands(const Query& query, Explanation* explanation);
  ResultSet Negate(const Query& query, Explanation* explanation);
  ResultSet AnyOf(const std::vector<std::string>& words);
  std::vector<std::string> Expanded(const Query& query, Explanation* explanation);
  void TellOfPositions(Explanation* explanation);
  void TellOfCut(const Query& query, std::size_t found, Explanation* explanation);
  const Vocabulary& Words();
  std::size_t DocumentsWith(const std::string& word);

  Kestan& engine_;
  std::optional<Vocabulary> words_;
  std::set<std::string> sought_;
  std::vector<std::string> notes_;
  bool negated_ = false;
  std::int64_t counting_ = 0;  // microseconds
};

// Returns the parts of `query` that speak for a document, each of which can be evaluated by itself:
// what AND and OR join, without what is under NOT.
std::vector<const Query*> PartsThatSpeakFor(const Query& query);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EVALUATION_H_
