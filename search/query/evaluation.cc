#include "search/query/evaluation.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "search/query/query_printer.h"
#include "search/ranking/hits.h"
#include "search/vocabulary/word_forms.h"

namespace kestan::search {
namespace {

// For so many missing words are others suggested: each costs a look at all words of the index.
constexpr std::size_t kMaxSuggestedFor = 10;

using Clock = std::chrono::steady_clock;

std::int64_t MicrosecondsSince(Clock::time_point start) {
  return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start).count();
}

std::string CountedWords(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " word" : " words");
}

std::int64_t TimeOfParts(const Explanation& explanation) {
  std::int64_t sum = 0;
  for (const Explanation& part : explanation.parts) {
    sum += part.microseconds + TimeOfParts(part);
  }
  return sum;
}

// Returns a new part of `explanation`, null if that is null.
Explanation* AddPart(Explanation* explanation) {
  return explanation == nullptr ? nullptr : &explanation->parts.emplace_back();
}

void CollectWords(const Query& query, std::vector<std::string>* words) {
  if (query.kind == Query::Kind::kNot) return;
  const bool is_word = query.kind == Query::Kind::kWord || query.kind == Query::Kind::kForms;
  if (is_word) words->push_back(query.word);
  for (const Query& operand : query.operands) CollectWords(operand, words);
}

// Each once, in the order in which they came.
std::vector<std::string> WordsOf(const Query& query) {
  std::vector<std::string> words;
  CollectWords(query, &words);
  std::set<std::string> seen;
  const auto is_known = [&](const std::string& word) { return !seen.insert(word).second; };
  words.erase(std::remove_if(words.begin(), words.end(), is_known), words.end());
  return words;
}

void CollectParts(const Query& query, std::vector<const Query*>* parts) {
  if (query.kind == Query::Kind::kNot) return;
  if (query.kind != Query::Kind::kAnd && query.kind != Query::Kind::kOr) {
    parts->push_back(&query);
    return;
  }
  for (const Query& operand : query.operands) CollectParts(operand, parts);
}

std::vector<const Query*> PointersTo(const std::vector<Query>& queries) {
  std::vector<const Query*> pointers;
  pointers.reserve(queries.size());
  for (const Query& query : queries) pointers.push_back(&query);
  return pointers;
}

// Unites sets in their order. Only unions of equally many are united, as far as that goes, so that
// none is copied once for each that follows.
class Union {
 public:
  // Borrows `engine`.
  explicit Union(Kestan& engine) : engine_(engine) {}

  void Add(ResultSet set) {
    if (set.id() == -1) return;
    united_.push_back({std::move(set), 1});
    while (united_.size() > 1 && united_[united_.size() - 2].sets == united_.back().sets) {
      UniteLastTwo();
    }
  }

  // Returns the union of all, -1 if there are none.
  ResultSet Take() {
    while (united_.size() > 1) UniteLastTwo();
    return united_.empty() ? ResultSet(engine_, -1) : std::move(united_.front().set);
  }

 private:
  struct United {
    ResultSet set;
    std::size_t sets;
  };

  void UniteLastTwo() {
    const United last = std::move(united_.back());
    united_.pop_back();
    United& before = united_.back();
    before.set = ResultSet(engine_, engine_.QueryOr(before.set.id(), last.set.id()));
    before.sets += last.sets;
  }

  Kestan& engine_;
  std::vector<United> united_;  // each of fewer sets than the one before, but for the last
};

}  // namespace

std::vector<Repeated> Distinct(const std::vector<const Query*>& queries) {
  std::vector<Repeated> distinct;
  std::map<const Query*, std::size_t, QueryLess> places;
  for (const Query* query : queries) {
    const auto [place, is_new] = places.emplace(query, distinct.size());
    if (is_new) {
      distinct.push_back({query, 1});
    } else {
      ++distinct[place->second].times;
    }
  }
  return distinct;
}

ResultSet Evaluator::Evaluate(const Query& query, Explanation* explanation) {
  const Clock::time_point start = Clock::now();
  const std::int64_t counted_before = counting_;
  ResultSet result = EvaluateNode(query, explanation);
  if (explanation != nullptr) {
    // Counting is left out of all times: a search without explanations does not do it.
    const std::int64_t elsewhere = counting_ - counted_before + TimeOfParts(*explanation);
    explanation->microseconds = std::max<std::int64_t>(MicrosecondsSince(start) - elsewhere, 0);
    const Clock::time_point counting = Clock::now();
    explanation->label = LabelOf(query);
    explanation->documents = CountLines(result.Listing());
    counting_ += MicrosecondsSince(counting);
  }
  return result;
}

ResultSet Evaluator::EvaluateNode(const Query& query, Explanation* explanation) {
  switch (query.kind) {
    case Query::Kind::kNot:
      return Negate(query, explanation);
    case Query::Kind::kNear:
      return EvaluateNear(query, explanation);
    case Query::Kind::kAnd:
      return EvaluateAnd(query, explanation);
    case Query::Kind::kOr:
      return EvaluateOr(query, explanation);
    default:
      return AnyOf(Expanded(query, explanation));
  }
}

ResultSet Evaluator::Negate(const Query& query, Explanation* explanation) {
  negated_ = !negated_;
  const ResultSet operand = Evaluate(query.operands.front(), AddPart(explanation));
  negated_ = !negated_;
  return {engine_, engine_.QueryNegate(operand.id())};
}

ResultSet Evaluator::EvaluateOperand(const Repeated& operand, Explanation* explanation) {
  Explanation* const part = AddPart(explanation);
  ResultSet result = Evaluate(*operand.query, part);
  if (part != nullptr && operand.times > 1) {
    if (!part->note.empty()) part->note += ", ";
    part->note += "asked " + std::to_string(operand.times) + " times, counts once";
  }
  return result;
}

// Words in a row may well be equal, and are in different places then.
ResultSet Evaluator::EvaluateNear(const Query& query, Explanation* explanation) {
  TellOfPositions(explanation);
  ResultSet so_far = Evaluate(query.operands.front(), AddPart(explanation));
  for (std::size_t i = 1; i < query.operands.size(); ++i) {
    const Query& operand = query.operands[i];
    const ResultSet next = Evaluate(operand, AddPart(explanation));
    so_far = {engine_, engine_.QueryAnd(so_far.id(), next.id(), operand.distance_words)};
  }
  return so_far;
}

ResultSet Evaluator::EvaluateAnd(const Query& query, Explanation* explanation) {
  const std::vector<Repeated> operands = Distinct(PointersTo(query.operands));
  ResultSet so_far = EvaluateOperand(operands.front(), explanation);
  for (std::size_t i = 1; i < operands.size(); ++i) {
    const ResultSet next = EvaluateOperand(operands[i], explanation);
    so_far = {engine_, engine_.QueryAnd(so_far.id(), next.id(), 0)};
  }
  return so_far;
}

ResultSet Evaluator::EvaluateOr(const Query& query, Explanation* explanation) {
  Union united(engine_);
  for (const Repeated& operand : Distinct(PointersTo(query.operands))) {
    united.Add(EvaluateOperand(operand, explanation));
  }
  return united.Take();
}

// Postings of short words outlive their documents and the shrinks of other programs. They would not
// be listed, but the percentages of the others would be of their scores.
ResultSet Evaluator::Find(const std::string& word) {
  ResultSet found(engine_, engine_.QueryWord(word.c_str()));
  const bool is_short = word.size() == 1 || (word.size() == 2 && word[1] == '-');
  if (found.id() == -1 || !is_short) return found;
  if (!documents_) documents_.emplace(engine_, engine_.QueryNegate(-1));
  return {engine_, engine_.QueryAnd(documents_->id(), found.id(), 0)};
}

ResultSet Evaluator::AnyOf(const std::vector<std::string>& words) {
  Union united(engine_);
  for (const std::string& word : words) {
    ResultSet set = Find(word);
    if (set.id() == -1) continue;
    if (!negated_) sought_.insert(word);
    united.Add(std::move(set));
  }
  return united.Take();
}

std::vector<std::string> Evaluator::Expanded(const Query& query, Explanation* explanation) {
  if (query.kind == Query::Kind::kWord) return {query.word};
  if (query.kind == Query::Kind::kForms) return FormsOf(query.word);
  const Expansion& expansion = ExpansionOf(query);
  if (explanation != nullptr) explanation->note = expansion.note;
  return expansion.words;
}

const Evaluator::Expansion& Evaluator::ExpansionOf(const Query& query) {
  auto key = std::make_tuple(query.kind, query.word, query.edits);
  const auto known = expansions_.find(key);
  if (known != expansions_.end()) return known->second;
  return expansions_.emplace(std::move(key), Expand(query)).first->second;
}

Evaluator::Expansion Evaluator::Expand(const Query& query) {
  std::vector<Similar> candidates = query.kind == Query::Kind::kPrefix
                                        ? Words().WithPrefix(query.word)
                                        : Words().WithinEdits(query.word, query.edits);
  const std::size_t found = candidates.size();
  KeepClosest(
      kMaxExpansions, [this](const std::string& word) { return DocumentsWith(word); }, &candidates);
  Expansion expansion;
  expansion.note = CountedWords(found);
  if (found > kMaxExpansions) TellOfCut(query, &expansion, found);
  for (Similar& candidate : candidates) expansion.words.push_back(std::move(candidate.word));
  return expansion;
}

void Evaluator::TellOfCut(const Query& query, Expansion* expansion, std::size_t found) {
  const std::string closest = query.kind == Query::Kind::kFuzzy ? "closest and " : "";
  expansion->note = "only the " + std::to_string(kMaxExpansions) + " " + closest +
                    "most frequent of " + CountedWords(found);
  notes_.push_back(Spelled(query) + " stands for " + expansion->note);
}

void Evaluator::TellOfPositions(Explanation* explanation) {
  if ((engine_.Options() & 1) == 0) return;
  if (explanation != nullptr) explanation->note = "taken for AND";
  if (told_of_positions_) return;
  told_of_positions_ = true;
  notes_.emplace_back("the index keeps no positions, so NEAR and quotes are taken for AND");
}

const Vocabulary& Evaluator::Words() {
  if (!words_) words_.emplace(engine_.CommonWords(1, kAnyFrequency));
  return *words_;
}

std::size_t Evaluator::DocumentsWith(const std::string& word) {
  const auto known = documents_with_.find(word);
  if (known != documents_with_.end()) return known->second;
  const std::size_t counted =
      CountLines(ResultSet(engine_, engine_.QueryWord(word.c_str())).Listing());
  documents_with_.emplace(word, counted);
  return counted;
}

std::vector<std::string> Evaluator::SuggestionsFor(const Query& query) {
  const auto frequency_of = [this](const std::string& word) { return DocumentsWith(word); };
  std::vector<std::string> suggestions;
  std::size_t missing = 0;
  for (const std::string& word : WordsOf(query)) {
    if (missing == kMaxSuggestedFor) break;
    if (frequency_of(word) > 0) continue;
    ++missing;
    for (std::string& suggestion : Suggestions(Words(), word, frequency_of)) {
      const bool is_new =
          std::find(suggestions.begin(), suggestions.end(), suggestion) == suggestions.end();
      if (is_new) suggestions.push_back(std::move(suggestion));
    }
  }
  return suggestions;
}

std::vector<const Query*> PartsThatSpeakFor(const Query& query) {
  std::vector<const Query*> parts;
  CollectParts(query, &parts);
  return parts;
}

}  // namespace kestan::search
