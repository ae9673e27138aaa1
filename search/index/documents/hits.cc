// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/documents/hits.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace kestan::search {
namespace {

// Of so many hits at most, the titles are announced before they are read.
constexpr std::size_t kMostAnnounced = 1000;

// Returns the percentages that scores are of the best one.
int PercentOf(double score, double best) {
  if (best <= 0) return 100;
  return std::max(1, static_cast<int>(std::lround(100 * score / best)));
}

void AnnounceTitles(const std::vector<RankedDocument>& best, const Snapshot& snapshot) {
  if (best.size() > kMostAnnounced) return;
  for (const RankedDocument& document : best) {
    const Segment& segment = *snapshot.segments[document.id.segment];
    segment.WillReadField(document.id.code, DocumentField::kTitle);
  }
}

}  // namespace

Status ListHits(const std::vector<RankedDocument>& best, const Snapshot& snapshot, bool with_titles,
                std::vector<Hit>* hits) {
  if (with_titles) AnnounceTitles(best, snapshot);
  for (const RankedDocument& document : best) {
    const Segment& segment = *snapshot.segments[document.id.segment];
    Hit hit;
    hit.name = segment.NameOf(document.id.code);
    if (with_titles) {
      auto title = segment.FieldOf(document.id.code, DocumentField::kTitle);
      if (!title.ok()) return title.status();
      hit.title = std::move(*title);
    }
    hit.score = document.score;
    hit.percent = PercentOf(document.score, best.front().score);
    hit.index = snapshot.index_of_segment[document.id.segment];
    hits->push_back(std::move(hit));
    if (Status status = segment.status(); !status.ok()) return status;
  }
  return {};
}

// What is damaged has an empty name; so may a document of class Kestan.
Status VisitMatches(const std::vector<ScoredDocuments>& found, const Snapshot& snapshot,
                    const std::function<bool(const Match&)>& visit) {
  for (const ScoredDocuments& documents : found) {
    const Segment& segment = *snapshot.segments[documents.segment];
    const std::size_t index = snapshot.index_of_segment[documents.segment];
    for (std::size_t i = 0; i < documents.codes.size(); ++i) {
      const Match match{segment.NameOf(documents.codes[i]), documents.scores[i], index};
      if (match.name.empty() && !segment.status().ok()) return segment.status();
      if (!visit(match)) return {};
    }
  }
  return {};
}

}  // namespace kestan::search
