// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/ranking/top_documents.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "tests/search/matching/plain_segments.h"

namespace kestan::search {
namespace {

using kestan_tests::DocumentOfWords;
using kestan_tests::Plain;
using kestan_tests::PlainSegments;

constexpr std::uint32_t kSegments = 2;
constexpr std::uint32_t kDocuments = 9;  // of a segment

// Adds two segments whose names are in another order than their codes; one name stands in both.
void AddSegments(PlainSegments* segments) {
  for (const std::string_view names : {"hbdfacegi", "zyxwahtsr"}) {
    std::vector<DocumentOfWords> documents;
    for (const char name : names) documents.push_back(Plain(std::string(1, name), "x"));
    segments->Add(documents);
  }
}

bool AreEqual(const std::vector<RankedDocument>& left, const std::vector<RankedDocument>& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](const RankedDocument& a, const RankedDocument& b) {
                      return std::tie(a.id.segment, a.id.code, a.score) ==
                             std::tie(b.id.segment, b.id.code, b.score);
                    });
}

// What is to come out: all documents sorted, and cut off.
std::vector<RankedDocument> SortedPlainly(std::vector<RankedDocument> documents,
                                          const Snapshot& snapshot, std::size_t limit) {
  const auto name_of = [&](const RankedDocument& document) {
    return snapshot.segments[document.id.segment]->NameOf(document.id.code);
  };
  std::sort(documents.begin(), documents.end(), [&](const auto& left, const auto& right) {
    return std::make_tuple(-left.score, name_of(left), left.id.segment) <
           std::make_tuple(-right.score, name_of(right), right.id.segment);
  });
  if (limit != 0 && documents.size() > limit) documents.resize(limit);
  return documents;
}

// Each document of the snapshot once at most, in any order, with one of few scores.
std::vector<RankedDocument> AnyDocuments(const std::vector<int>& scores) {
  std::vector<RankedDocument> documents;
  for (std::size_t i = 0; i < std::min<std::size_t>(scores.size(), kSegments * kDocuments); ++i) {
    const auto number = static_cast<std::uint32_t>(i * 7 % (kSegments * kDocuments));
    const auto code = static_cast<Code>(number % kDocuments + 1);
    documents.push_back({{number / kDocuments, code}, static_cast<double>(scores[i] & 3)});
  }
  return documents;
}

RC_GTEST_PROP(TopDocumentsTest, KeepsWhatSortingAllOfThemPutsFirst,
              (const std::vector<int>& scores)) {
  PlainSegments segments;
  AddSegments(&segments);
  const Snapshot snapshot = segments.snapshot();
  const std::vector<RankedDocument> documents = AnyDocuments(scores);
  for (std::size_t limit = 0; limit <= documents.size() + 1; ++limit) {
    TopDocuments top(limit);
    for (const RankedDocument& document : documents) top.Add(document);
    RC_ASSERT(AreEqual(top.TakeSorted(snapshot), SortedPlainly(documents, snapshot, limit)));
  }
}

// As a search does that ranks each segment by itself.
RC_GTEST_PROP(TopDocumentsTest, TheBestOfTheBestAreTheBestOfAll, (const std::vector<int>& scores)) {
  PlainSegments segments;
  AddSegments(&segments);
  const Snapshot snapshot = segments.snapshot();
  const std::vector<RankedDocument> documents = AnyDocuments(scores);
  for (std::size_t limit = 1; limit <= documents.size() + 1; ++limit) {
    std::vector<TopDocuments> of_segments(kSegments, TopDocuments(limit));
    for (const RankedDocument& document : documents) of_segments[document.id.segment].Add(document);
    TopDocuments top(limit);
    for (TopDocuments& best : of_segments) {
      for (const RankedDocument& document : best.Take()) top.Add(document);
    }
    RC_ASSERT(AreEqual(top.TakeSorted(snapshot), SortedPlainly(documents, snapshot, limit)));
  }
}

}  // namespace
}  // namespace kestan::search
