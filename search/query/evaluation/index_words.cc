#include "search/query/evaluation/index_words.h"

#include <string_view>
#include <utility>
#include <vector>

namespace kestan::search {
namespace {

std::vector<std::string> WordsWithPostings(kestan::IndexReader& reader) {
  std::vector<std::string> words;
  reader.ForEachWord([&](std::string_view word, const WordPostings& postings) {
    if (WordPostings::Cursor(postings).Next()) words.emplace_back(word);
    return true;
  });
  return words;
}

bool HasDocument(kestan::IndexReader& reader, Code code) {
  return !reader.IsRemoved(code) && reader.NameOf(code).data() != nullptr;
}

}  // namespace

std::size_t CountDocuments(kestan::IndexReader& reader, std::string_view word) {
  const WordPostings postings = reader.FindWord(word);
  std::size_t count = 0;
  for (WordPostings::Cursor cursor(postings); cursor.Next();) {
    if (HasDocument(reader, cursor.code())) ++count;
  }
  return count;
}

const Vocabulary& IndexWords::All() {
  if (!all_) all_.emplace(WordsWithPostings(reader_));
  return *all_;
}

std::size_t IndexWords::DocumentsWith(const std::string& word) {
  const auto [known, is_new] = documents_with_.emplace(word, 0);
  if (is_new) known->second = CountDocuments(reader_, word);
  return known->second;
}

}  // namespace kestan::search
