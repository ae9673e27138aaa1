// SPDX-License-Identifier: GPL-3.0-or-later
// Answers are those of a naive reading, however documents are split over segments.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "search/query/query_printer.h"
#include "search/ranking/ranked_search.h"
#include "tests/search/matching/naive_reading.h"
#include "tests/search/matching/plain_segments.h"

namespace kestan::search {
namespace {

using kestan_tests::DocumentOfWords;
using kestan_tests::PlainSegments;
using Hits = std::vector<std::pair<std::string, double>>;

std::string AnyWord() {
  return *rc::gen::element<std::string>("a", "b", "c", "d", "Cat", "cat", "cats", "car", "card",
                                        "dog", "Dog", "flow", "flows", "rare");
}

std::vector<DocumentOfWords> AnyDocuments() {
  std::vector<DocumentOfWords> documents;
  const auto count = *rc::gen::inRange<std::size_t>(1, 24);
  for (std::size_t i = 0; i < count; ++i) {
    DocumentOfWords document;
    document.name = "n" + std::to_string(i * 7 % 100);
    const auto words = *rc::gen::inRange<std::size_t>(1, 16);
    while (document.words.size() < words) document.words.push_back(AnyWord());
    const int edit = *rc::gen::inRange(0, 6);
    document.is_removed = edit == 0;
    if (edit <= 1) document.new_name = "m" + std::to_string(i);
    documents.push_back(document);
  }
  return documents;
}

Query AnyLeaf() {
  Query leaf;
  leaf.word = AnyWord();
  leaf.kind =
      *rc::gen::element(Query::Kind::kWord, Query::Kind::kWord, Query::Kind::kWord,
                        Query::Kind::kPrefix, Query::Kind::kFuzzy, Query::Kind::kInflections);
  if (leaf.kind == Query::Kind::kFuzzy) leaf.edits = *rc::gen::inRange(1, 3);
  if (leaf.kind == Query::Kind::kPrefix) leaf.word.resize(1);
  const bool has_capital = leaf.word[0] < 'a';
  if (leaf.kind == Query::Kind::kInflections && has_capital) leaf.kind = Query::Kind::kWord;
  return leaf;
}

Query AnyQuery(int depth) {
  if (depth == 0 || *rc::gen::inRange(0, 5) == 0) return AnyLeaf();
  Query query;
  query.kind = *rc::gen::element(Query::Kind::kAnd, Query::Kind::kOr, Query::Kind::kNear,
                                 Query::Kind::kPhrase, Query::Kind::kNot);
  const std::size_t count =
      query.kind == Query::Kind::kNot ? 1 : *rc::gen::inRange<std::size_t>(2, 5);
  for (std::size_t i = 0; i < count; ++i) {
    query.operands.push_back(query.kind == Query::Kind::kPhrase ? AnyLeaf() : AnyQuery(depth - 1));
    if (query.kind != Query::Kind::kNear || i == 0) continue;
    query.operands.back().distance_words = *rc::gen::element(1, 2, 3, 8, 2147483647);
  }
  return query;
}

// Writes `documents` as `count` segments, some of them perhaps empty of documents and left out.
void AddSplit(const std::vector<DocumentOfWords>& documents, std::size_t count,
              PlainSegments* segments) {
  std::vector<std::size_t> cuts = {0, documents.size()};
  while (cuts.size() < count + 1) {
    cuts.push_back(*rc::gen::inRange<std::size_t>(0, documents.size() + 1));
  }
  std::sort(cuts.begin(), cuts.end());
  for (std::size_t i = 0; i + 1 < cuts.size(); ++i) {
    if (cuts[i] == cuts[i + 1]) continue;
    segments->Add({documents.begin() + static_cast<std::ptrdiff_t>(cuts[i]),
                   documents.begin() + static_cast<std::ptrdiff_t>(cuts[i + 1])});
  }
}

// What a merge of all segments leaves.
std::vector<DocumentOfWords> Living(const std::vector<DocumentOfWords>& documents) {
  std::vector<DocumentOfWords> living;
  for (const DocumentOfWords& document : documents) {
    if (document.is_removed) continue;
    living.push_back(document);
    if (!document.new_name.empty()) living.back().name = std::exchange(living.back().new_name, "");
  }
  return living;
}

Hits HitsOf(const RankedDocuments& ranked, const Snapshot& snapshot) {
  Hits hits;
  for (const RankedDocument& document : ranked.best) {
    const Segment& segment = *snapshot.segments[document.id.segment];
    hits.emplace_back(segment.NameOf(document.id.code), document.score);
  }
  return hits;
}

RankedDocuments Ranked(const Query& query, const Snapshot& snapshot, const SearchOptions& options) {
  auto ranked = RankedSearch(query, snapshot, options);
  RC_ASSERT(ranked.ok());
  return *ranked;
}

// The best score first, then the name.
Hits Sorted(const std::map<std::string, double>& scores) {
  Hits hits(scores.begin(), scores.end());
  std::stable_sort(hits.begin(), hits.end(),
                   [](const auto& left, const auto& right) { return left.second > right.second; });
  return hits;
}

void CheckAgainstNaiveReading(const std::vector<DocumentOfWords>& documents, const Query& query,
                              const SearchOptions& options, const Hits& hits) {
  const auto expected = kestan_tests::ScoreNaively(documents, query, options);
  RC_ASSERT(hits.size() == expected.size());
  for (const auto& [name, score] : hits) {
    const auto place = expected.find(name);
    RC_ASSERT(place != expected.end());
    RC_ASSERT(std::abs(place->second - score) <= 1e-9 * (1 + std::abs(score)));
  }
  RC_ASSERT(hits == Sorted({hits.begin(), hits.end()}));
}

void CheckEqual(const Query& query, const SearchOptions& options, const Hits& expected,
                const std::vector<std::string>& terms, const Snapshot& snapshot) {
  const RankedDocuments ranked = Ranked(query, snapshot, options);
  const std::size_t shown =
      options.limit == 0 ? expected.size() : std::min(options.limit, expected.size());
  const Hits best(expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(shown));
  RC_ASSERT(HitsOf(ranked, snapshot) == best);  // scores to the last bit
  RC_ASSERT(ranked.total == expected.size());
  RC_ASSERT(ranked.terms == terms);
  const auto count = CountMatches(query, snapshot);
  RC_ASSERT(count.ok());
  RC_ASSERT(*count == expected.size());
}

RC_GTEST_PROP(SplitPropertiesTest, AnswersAreThoseOfANaiveReadingHoweverDocumentsAreSplit, ()) {
  const std::vector<DocumentOfWords> documents = AnyDocuments();
  RC_PRE(!Living(documents).empty());
  std::vector<PlainSegments> splits(4);
  AddSplit(documents, 1, &splits[0]);
  AddSplit(documents, 2, &splits[1]);
  AddSplit(documents, 5, &splits[2]);
  splits[3].Add(Living(documents));
  for (int i = 0; i < 20; ++i) {
    const Query query = AnyQuery(3);
    RC_LOG() << ToString(query, QuotesMean::kPhrase) << "\n";
    SearchOptions options;
    options.proximity_bonus = *rc::gen::element(0.0, 0.5, 3.0);
    options.words = *rc::gen::element(WordsMean::kBest, WordsMean::kAll);
    options.limit = 0;
    const RankedDocuments all = Ranked(query, splits[0].snapshot(), options);
    const Hits expected = HitsOf(all, splits[0].snapshot());
    CheckAgainstNaiveReading(documents, query, options, expected);
    for (const PlainSegments& split : splits) {
      options.limit = *rc::gen::element<std::size_t>(0, 1, 3, 10);
      CheckEqual(query, options, expected, all.terms, split.snapshot());
    }
  }
}

}  // namespace
}  // namespace kestan::search
