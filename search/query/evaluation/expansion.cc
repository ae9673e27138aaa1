#include "search/query/evaluation/expansion.h"

#include <utility>

#include "search/vocabulary/inflections.h"

namespace kestan::search {
namespace {

using Kind = Query::Kind;

std::string CountedWords(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " word" : " words");
}

std::string NoteOfCut(Kind kind, std::size_t found) {
  const std::string closest = kind == Kind::kFuzzy ? "closest and " : "";
  return "only the " + std::to_string(kMaxExpansions) + " " + closest + "most frequent of " +
         CountedWords(found);
}

}  // namespace

const Expansion& QueryExpander::Expand(const Query& leaf) {
  auto key = std::make_tuple(leaf.kind, leaf.word, leaf.edits);
  const auto known = known_.find(key);
  if (known != known_.end()) return known->second;
  Expansion expansion;
  if (leaf.kind == Kind::kWord) {
    expansion.words.push_back(leaf.word);
  } else if (leaf.kind == Kind::kInflections) {
    expansion.words = Inflections(leaf.word);
  } else {
    expansion = ExpandPattern(leaf);
  }
  return known_.emplace(std::move(key), std::move(expansion)).first->second;
}

Expansion QueryExpander::ExpandPattern(const Query& leaf) {
  const Vocabulary& vocabulary = words_.All();
  std::vector<FuzzyMatch> matches = leaf.kind == Kind::kPrefix
                                        ? vocabulary.WithPrefix(leaf.word)
                                        : vocabulary.WithinEdits(leaf.word, leaf.edits);
  Expansion expansion;
  expansion.is_cut = matches.size() > kMaxExpansions;
  expansion.note =
      expansion.is_cut ? NoteOfCut(leaf.kind, matches.size()) : CountedWords(matches.size());
  KeepClosest(
      kMaxExpansions, [this](const std::string& word) { return words_.DocumentsWith(word); },
      &matches);
  for (FuzzyMatch& match : matches) expansion.words.push_back(std::move(match.word));
  return expansion;
}

}  // namespace kestan::search
