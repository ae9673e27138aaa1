// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/matching/leaf_terms.h"

#include <string>
#include <string_view>

#include "search/text/analyzer/word_encoding.h"
#include "search/text/letters.h"
#include "search/text/utf8.h"
#include "search/vocabulary/stored_edit_distance.h"

namespace kestan::search {
namespace {

using Kind = Query::Kind;
using Visit = std::function<Status(const TermEntry&)>;

// Words that begin with a capital lie between these in order of bytes.
constexpr std::string_view kFirstCapital = "A";
constexpr std::string_view kAfterCapitals = "[";

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

// Reads words as they are stored.
class StoredStemmer {
 public:
  // Borrows `stemmer`.
  explicit StoredStemmer(Stemmer* stemmer) : stemmer_(stemmer) {}

  bool HasForms(std::string_view word) { return stemmer_->HasForms(Utf8(word)); }

  // Returns the stem of `word` in UTF-8; "" if the word has no other forms. Lent until the next
  // call.
  std::string_view StemOf(std::string_view word) {
    const std::string_view utf8 = Utf8(word);
    return stemmer_->HasForms(utf8) ? stemmer_->Stem(utf8) : std::string_view();
  }

 private:
  std::string_view Utf8(std::string_view word) {
    if (FindNonAscii(word, 0) == word.size()) return word;
    utf8_ = DecodedWords(word);
    return utf8_;
  }

  Stemmer* const stemmer_;
  std::string utf8_;
};

Status VisitForms(const TermDictionary& terms, const std::string& word, Stemmer* stemmer,
                  const Visit& visit) {
  StoredStemmer stored(stemmer);
  if (HasCapital(word) || !stored.HasForms(word)) return VisitWord(terms, word, visit);
  Status status = stemmer->Open();
  if (!status.ok()) return status;
  const std::string stem(stored.StemOf(word));
  if (stem.empty()) return VisitWord(terms, word, visit);
  const std::string prefix = StoredCharacters(stemmer->PrefixOf(stem));
  return VisitPrefix(terms, prefix, [&](const TermEntry& entry) {
    return stored.StemOf(entry.term) == stem ? visit(entry) : Status();
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

Status ForEachTermOf(const TermDictionary& terms, const Query& leaf, Stemmer* stemmer,
                     const Visit& visit) {
  switch (leaf.kind) {
    case Kind::kPrefix:
      return VisitPrefix(terms, leaf.word, visit);
    case Kind::kFuzzy:
      return ForEachFuzzyTerm(terms, leaf.word, leaf.edits,
                              [&](const TermEntry& entry, int) { return visit(entry); });
    case Kind::kInflections:
      return VisitForms(terms, leaf.word, stemmer, visit);
    default:
      return VisitWord(terms, leaf.word, visit);
  }
}

}  // namespace kestan::search
