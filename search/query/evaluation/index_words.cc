#include "search/query/evaluation/index_words.h"

#include <string_view>
#include <utility>
#include <vector>

namespace kestan::search {
namespace {

std::vector<std::string> WordsWithPostings(IndexReader& reader) {
  std::vector<std::string> words;
  reader.ForEachWord([&](std::string_view word, const WordPostings& postings) {
    if (WordPostings::Cursor(postings).Next()) words.emplace_back(word);
    return true;
  });
  return words;
}

}  // namespace

const Vocabulary& IndexWords::All() {
  if (!all_) all_.emplace(WordsWithPostings(reader_));
  return *all_;
}

std::size_t IndexWords::DocumentsWith(const std::string& word) {
  const auto [known, is_new] = documents_with_.emplace(word, 0);
  if (is_new) {
    const WordPostings postings = reader_.FindWord(word);
    for (WordPostings::Cursor cursor(postings); cursor.Next();) {
      if (HasDocument(cursor.code())) ++known->second;
    }
  }
  return known->second;
}

bool IndexWords::HasDocument(Code code) {
  return !reader_.IsRemoved(code) && reader_.NameOf(code).data() != nullptr;
}

}  // namespace kestan::search
