#include "search/matching/leaf_terms.h"

#include <cstddef>
#include <string>
#include <string_view>

#include "search/text/letters.h"
#include "search/vocabulary/stem.h"
#include "search/vocabulary/stored_edit_distance.h"

namespace kestan::search {
namespace {

using Kind = Query::Kind;
using Visit = std::function<Status(const TermEntry&)>;

// Words that begin with a capital lie between these in order of bytes.
constexpr std::string_view kFirstCapital = "A";
constexpr std::string_view kAfterCapitals = "[";

constexpr std::size_t kMinFormLetters = 3;  // a shorter word has no other forms

Status VisitWord(const TermDictionary& terms, std::string_view word, const Visit& visit) {
  const Result<std::optional<TermEntry>> entry = terms.Find(word);
  if (!entry.ok()) return entry.status();
  return *entry ? visit(**entry) : Status();
}

Status VisitPrefix(const TermDictionary& terms, const std::string& prefix, const Visit& visit) {
  const bool exact = HasCapital(prefix);
  Status visited;
  Status status = terms.ForEach(prefix, [&](const TermEntry& entry) {
    if (entry.term.substr(0, prefix.size()) != prefix) return false;
    if (exact || !HasCapital(entry.term)) visited = visit(entry);
    return visited.ok();
  });
  return status.ok() ? visited : status;
}

Status VisitForms(const TermDictionary& terms, const std::string& word, const Visit& visit) {
  const std::string stem = Stem(word);
  if (stem.size() < kMinFormLetters || HasCapital(word)) return VisitWord(terms, word, visit);
  return VisitPrefix(terms, std::string(StemPrefix(stem)), [&](const TermEntry& entry) {
    return Stem(entry.term) == stem ? visit(entry) : Status();
  });
}

}  // namespace

Status ForEachFuzzyTerm(const TermDictionary& terms, std::string_view word, int edits,
                        const std::function<Status(const TermEntry&, int edits)>& visit) {
  const bool exact = HasCapital(word);
  StoredEditDistance distance(word, edits);
  Status visited;
  bool is_at_capitals = false;
  const auto look = [&](const TermEntry& entry) {
    is_at_capitals = !exact && entry.term.substr(0, 1) >= kFirstCapital &&
                     entry.term.substr(0, 1) < kAfterCapitals;
    if (is_at_capitals) return false;
    const int needed = distance.To(entry.term);
    if (needed <= edits && (exact || !HasCapital(entry.term))) visited = visit(entry, needed);
    return visited.ok();
  };
  Status status = terms.ForEach("", look);
  if (status.ok() && is_at_capitals) status = terms.ForEach(kAfterCapitals, look);
  return status.ok() ? visited : status;
}

Status ForEachTermOf(const TermDictionary& terms, const Query& leaf, const Visit& visit) {
  switch (leaf.kind) {
    case Kind::kPrefix:
      return VisitPrefix(terms, leaf.word, visit);
    case Kind::kFuzzy:
      return ForEachFuzzyTerm(terms, leaf.word, leaf.edits,
                              [&](const TermEntry& entry, int) { return visit(entry); });
    case Kind::kInflections:
      return VisitForms(terms, leaf.word, visit);
    default:
      return VisitWord(terms, leaf.word, visit);
  }
}

}  // namespace kestan::search
