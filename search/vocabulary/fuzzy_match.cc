#include "search/vocabulary/fuzzy_match.h"

#include <algorithm>
#include <tuple>

namespace kestan::search {

void CountDocuments(const DocumentFrequency& document_frequency, std::vector<FuzzyMatch>* matches) {
  for (FuzzyMatch& match : *matches) match.documents = document_frequency(match.word);
}

bool IsCloser(const FuzzyMatch& left, const FuzzyMatch& right) {
  return std::tie(left.edits, right.documents, left.word) <
         std::tie(right.edits, left.documents, right.word);
}

void KeepClosest(std::size_t max, const DocumentFrequency& document_frequency,
                 std::vector<FuzzyMatch>* matches) {
  if (matches->size() <= max) return;
  CountDocuments(document_frequency, matches);
  std::sort(matches->begin(), matches->end(), IsCloser);
  matches->resize(max);
}

}  // namespace kestan::search
