// Words of an index that resemble a given one, and which of them are the closest.
#ifndef KESTAN_SEARCH_VOCABULARY_FUZZY_MATCH_H_
#define KESTAN_SEARCH_VOCABULARY_FUZZY_MATCH_H_

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace kestan::search {

// Returns the document frequency of a word: how many documents have it.
using DocumentFrequency = std::function<std::size_t(const std::string& word)>;

struct FuzzyMatch {
  std::string word;
  int edits = 0;
  std::size_t documents = 0;  // the document frequency; 0 until it is looked up
};

// Looks up the document frequency of each of `matches`.
void CountDocuments(const DocumentFrequency& document_frequency, std::vector<FuzzyMatch>* matches);

// Returns whether `left` comes before `right`: it has fewer edits, then more documents, then the
// smaller bytes.
bool IsCloser(const FuzzyMatch& left, const FuzzyMatch& right);

// Cuts `matches` to the `max` closest, in order. Looks up document frequencies only if there are
// more than that.
void KeepClosest(std::size_t max, const DocumentFrequency& document_frequency,
                 std::vector<FuzzyMatch>* matches);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_VOCABULARY_FUZZY_MATCH_H_
