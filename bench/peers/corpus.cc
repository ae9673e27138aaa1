// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/peers/corpus.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

namespace kestan_bench {
namespace {

constexpr QueryKind kKinds[] = {QueryKind::kWord,   QueryKind::kAnd, QueryKind::kNear1,
                                QueryKind::kNear10, QueryKind::kOr,  QueryKind::kAndNot};
constexpr const char* kKindNames[] = {"word", "and", "near1", "near10", "or", "andnot"};
static_assert(std::size(kKinds) == std::size(kKindNames));

constexpr std::array<bool, 256> Letters() {
  std::array<bool, 256> letters{};
  for (unsigned char letter = 'a'; letter <= 'z'; ++letter) letters[letter] = true;
  for (unsigned char letter = 'A'; letter <= 'Z'; ++letter) letters[letter] = true;
  return letters;
}

constexpr std::array<bool, 256> kLetters = Letters();

bool IsLetter(char byte) { return kLetters[static_cast<unsigned char>(byte)]; }

}  // namespace

void Fail(const std::string& who, const std::string& what) {
  std::cerr << who << ": " << what << '\n';
  std::exit(1);
}

CorpusReader::CorpusReader(const std::string& path) : file_(std::fopen(path.c_str(), "rb")) {
  if (file_ == nullptr) Fail(path, "cannot be read");
}

bool CorpusReader::Next(std::string* name, std::string* text) {
  constexpr std::size_t kMostNameBytes = 1000;
  char name_bytes[kMostNameBytes + 1];
  std::size_t text_bytes = 0;
  if (std::fscanf(file_.get(), "%1000s %zu", name_bytes, &text_bytes) != 2) return false;
  *name = name_bytes;
  text->resize(text_bytes);
  std::fgetc(file_.get());
  if (std::fread(text->data(), 1, text_bytes, file_.get()) != text_bytes) {
    Fail(*name, "the corpus ends too early");
  }
  std::fgetc(file_.get());
  return true;
}

void CleanText(std::string* text) {
  char* const bytes = text->data();  // the terminator may be read
  const std::size_t size = text->size();
  std::size_t kept = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const bool in_word = kept > 0 && bytes[kept - 1] != ' ';
    if (IsLetter(bytes[i]) || (bytes[i] == '\'' && in_word && IsLetter(bytes[i + 1]))) {
      bytes[kept++] = bytes[i];
    } else if (in_word) {
      bytes[kept++] = ' ';
    }
  }
  text->resize(kept);
}

const char* KindName(QueryKind kind) { return kKindNames[static_cast<int>(kind)]; }

QueryKind KindNamed(const std::string& name) {
  for (const QueryKind kind : kKinds) {
    if (name == KindName(kind)) return kind;
  }
  Fail(name, "no such kind of query");
}

std::vector<Query> ReadQueries(const std::string& path) {
  std::ifstream file(path);
  if (!file) Fail(path, "cannot be read");
  std::vector<Query> queries;
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line);
    std::string kind;
    Query query{};
    fields >> kind >> query.first >> query.second;
    query.kind = KindNamed(kind);
    queries.push_back(query);
  }
  return queries;
}

}  // namespace kestan_bench
