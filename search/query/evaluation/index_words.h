// The words of an open index.
#ifndef KESTAN_SEARCH_QUERY_EVALUATION_INDEX_WORDS_H_
#define KESTAN_SEARCH_QUERY_EVALUATION_INDEX_WORDS_H_

#include <kestan/results.h>

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "search/vocabulary/vocabulary.h"

namespace kestan::search {

// Returns how many documents have `word`, without removed ones.
std::size_t CountDocuments(kestan::IndexReader& reader, std::string_view word);

// The words of an index and their document frequencies. Reads them when they are first asked for,
// and keeps them: the index must not change meanwhile.
class IndexWords {
 public:
  // Borrows `reader`, whose index is open. Reads nothing yet.
  explicit IndexWords(kestan::IndexReader& reader) : reader_(reader) {}

  // Returns the words that are in some document, removed ones among them.
  const Vocabulary& All();

  // Returns how many documents have `word`, without removed ones.
  std::size_t DocumentsWith(const std::string& word);

 private:
  kestan::IndexReader& reader_;
  std::optional<Vocabulary> all_;
  std::map<std::string, std::size_t> documents_with_;  // of the words that were asked for
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_EVALUATION_INDEX_WORDS_H_
