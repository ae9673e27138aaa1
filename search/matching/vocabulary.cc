// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/matching/vocabulary.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "search/matching/leaf_terms.h"
#include "search/matching/operators/operators.h"
#include "search/text/analyzer/word_encoding.h"
#include "search/text/letters.h"

namespace kestan::search {
namespace {

constexpr std::size_t kMaxSuggestions = 3;
constexpr std::size_t kMinLetters = 2;
constexpr std::size_t kTermsAtOnce = 64;

// How many mistakes a word of so many letters may hold.
int MaxMistakes(std::size_t letters) {
  if (letters <= 2) return 0;
  return letters <= 4 ? 1 : 2;
}

Result<std::uint64_t> LivingDocumentsIn(const Segment& segment, const TermEntry& entry) {
  if (segment.edits().removed_count() == 0) return std::uint64_t{entry.documents};
  const Result<TermPostings> postings = segment.PostingsOf(entry);
  if (!postings.ok()) return postings.status();
  const Result<Occurrences> found = ReadTerm(*postings, segment, Need::kCodes);
  if (!found.ok()) return found.status();
  return std::uint64_t{found->size()};
}

// The terms of one segment that begin with a prefix, some at a time.
class TermStream {
 public:
  // Borrows `terms`.
  TermStream(const TermDictionary& terms, std::string_view prefix)
      : terms_(terms), prefix_(prefix), from_(prefix) {}

  // Reads terms if none is left.
  //   Returns  whether there is one.
  Result<bool> Fill() {
    if (next_ < read_.size()) return true;
    if (at_end_) return false;
    read_.clear();
    next_ = 0;
    at_end_ = true;
    Status status = terms_.ForEach(from_, [this](const TermEntry& entry) {
      if (entry.term.substr(0, prefix_.size()) != prefix_) return false;
      read_.emplace_back(entry.term);
      at_end_ = read_.size() < kTermsAtOnce;
      return at_end_;
    });
    if (!status.ok()) return status;
    if (!read_.empty()) from_ = read_.back() + '\0';
    return !read_.empty();
  }

  // There must be one.
  const std::string& term() const { return read_[next_]; }
  void Advance() { ++next_; }

 private:
  const TermDictionary& terms_;
  const std::string prefix_;
  std::string from_;  // where to read on
  std::vector<std::string> read_;
  std::size_t next_ = 0;
  bool at_end_ = false;
};

// Finds the first term of all streams, and goes past it in each.
//   Returns  nothing if there is none.
Result<std::optional<std::string>> TakeFirst(std::vector<TermStream>* streams) {
  std::optional<std::string> first;
  for (TermStream& stream : *streams) {
    const Result<bool> filled = stream.Fill();
    if (!filled.ok()) return filled.status();
    if (*filled && (!first || stream.term() < *first)) first = stream.term();
  }
  for (TermStream& stream : *streams) {
    const Result<bool> filled = stream.Fill();
    if (filled.ok() && *filled && stream.term() == first) stream.Advance();
  }
  return first;
}

// Returns the terms near `word` that living documents hold.
Result<std::vector<FuzzyMatch>> LivingTermsNear(const Snapshot& snapshot, std::string_view word) {
  std::map<std::string, FuzzyMatch> near;
  for (const auto& segment : snapshot.segments) {
    Status status = ForEachFuzzyTerm(segment->terms(), word, MaxMistakes(CountCharacters(word)),
                                     [&](const TermEntry& entry, int edits) {
                                       if (CountCharacters(entry.term) < kMinLetters)
                                         return Status();
                                       const Result<std::uint64_t> documents =
                                           LivingDocumentsIn(*segment, entry);
                                       if (!documents.ok()) return documents.status();
                                       FuzzyMatch& match = near[std::string(entry.term)];
                                       match.edits = edits;
                                       match.documents += static_cast<std::size_t>(*documents);
                                       return Status();
                                     });
    if (!status.ok()) return status;
  }
  std::vector<FuzzyMatch> matches;
  for (auto& [term, match] : near) {
    if (match.documents == 0) continue;
    match.word = term;
    matches.push_back(std::move(match));
  }
  return matches;
}

}  // namespace

Result<std::uint64_t> LivingDocumentsWith(const Snapshot& snapshot, std::string_view term) {
  std::uint64_t documents = 0;
  for (const auto& segment : snapshot.segments) {
    const Result<std::optional<TermEntry>> entry = segment->terms().Find(term);
    if (!entry.ok()) return entry.status();
    if (!*entry) continue;
    const Result<std::uint64_t> living = LivingDocumentsIn(*segment, **entry);
    if (!living.ok()) return living.status();
    documents += *living;
  }
  return documents;
}

Result<bool> IsInMostDocuments(const Snapshot& snapshot, std::string_view term) {
  const std::uint64_t half = snapshot.living_documents() / 2;
  std::uint64_t documents = 0;  // removed ones among them
  for (const auto& segment : snapshot.segments) {
    const Result<std::optional<TermEntry>> entry = segment->terms().Find(term);
    if (!entry.ok()) return entry.status();
    if (*entry) documents += (*entry)->documents;
  }
  if (documents <= half) return false;
  const Result<std::uint64_t> living = LivingDocumentsWith(snapshot, term);
  if (!living.ok()) return living.status();
  return *living > half;
}

Status ForEachTerm(const Snapshot& snapshot, std::string_view prefix,
                   const std::function<bool(std::string_view term)>& visit) {
  std::vector<TermStream> streams;
  for (const auto& segment : snapshot.segments) streams.emplace_back(segment->terms(), prefix);
  while (true) {
    const Result<std::optional<std::string>> term = TakeFirst(&streams);
    if (!term.ok()) return term.status();
    if (!*term || !visit(**term)) return {};
  }
}

Result<std::vector<FuzzyMatch>> ClosestTerms(const Snapshot& snapshot, std::string_view word) {
  Result<std::vector<FuzzyMatch>> matches = LivingTermsNear(snapshot, LowerCase(word));
  if (matches.ok()) std::sort(matches->begin(), matches->end(), IsCloser);
  return matches;
}

Result<std::vector<std::string>> SuggestionsFor(const Snapshot& snapshot, std::string_view word) {
  Result<std::vector<FuzzyMatch>> matches = ClosestTerms(snapshot, word);
  if (!matches.ok()) return matches.status();
  matches->resize(std::min(matches->size(), kMaxSuggestions));
  std::vector<std::string> words;
  for (FuzzyMatch& match : *matches) words.push_back(std::move(match.word));
  return words;
}

}  // namespace kestan::search
