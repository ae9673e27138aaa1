#include "search/query/index_words.h"

#include "search/query/result_set.h"

namespace kestan::search {

const Vocabulary& IndexWords::All() {
  if (!all_) all_.emplace(engine_.CommonWords(1, kAnyFrequency));
  return *all_;
}

std::size_t IndexWords::DocumentsWith(const std::string& word) {
  const auto known = documents_with_.find(word);
  if (known != documents_with_.end()) return known->second;
  const std::size_t counted = ResultSet(engine_, engine_.QueryWord(word.c_str())).CountDocuments();
  documents_with_.emplace(word, counted);
  return counted;
}

}  // namespace kestan::search
