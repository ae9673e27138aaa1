// SPDX-License-Identifier: GPL-3.0-or-later
// What went into an index comes out again, compared with a plain list of the words.
#include <gtest/gtest.h>
#include <kestan/maintenance/documents.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using Word = std::tuple<unsigned, std::string>;
using Words = std::vector<Word>;

// Words that the engine can keep: any bytes but white space and NUL, and not such as have the key
// of another record. Few enough to meet each other, in upper and lower case.
bool IsKept(const std::string& word) {
  const std::string not_words = std::string(" \t\n\v\f\r") + '\0';
  const std::string families = "gdcwust";
  if (word.empty() || word.find_first_of(not_words) != word.npos) return false;
  return word.size() < 2 || word[1] != '-' || families.find(word[0]) == families.npos;
}

rc::Gen<std::string> AnyWord() {
  const auto letters = rc::gen::elementOf(std::string("abAB-_@`\x81\xa1"));
  const auto bytes = rc::gen::oneOf(letters, letters, rc::gen::arbitrary<char>());
  return rc::gen::suchThat(rc::gen::resize(3, rc::gen::container<std::string>(bytes)), IsKept);
}

RC_GTEST_PROP(DocumentsPropertiesTest, WordsComeBackAsTheyWentIn, ()) {
  const TempDir folder;
  const std::string path = folder / "index";
  const auto texts = *rc::gen::container<std::vector<std::vector<std::string>>>(
      rc::gen::container<std::vector<std::string>>(AnyWord()));
  const auto at_once = *rc::gen::inRange<std::size_t>(0, 50);
  std::map<std::string, Words> expected;
  {
    Kestan engine;
    RC_ASSERT(engine.OpenIndex(path.c_str(), 1) == 0);
    for (const auto& words : texts) {
      const std::string name = "name" + std::to_string(expected.size());
      std::string text;
      for (const std::string& word : words) {
        text += word + "\n";
        expected[name].emplace_back(static_cast<unsigned>(expected[name].size() + 1), word);
      }
      expected[name];
      engine.AddDocumentWords(name.c_str(), text.c_str());
    }
  }
  Database store;
  RC_ASSERT(store.Open(path.c_str(), 0) == 0);
  std::map<std::string, Words> read;
  const auto take = [&](const kestan::StoredDocument& document) {
    Words& words = read[std::string(document.name)];
    for (std::size_t i = 0; i < document.word_count; ++i) {
      words.emplace_back(document.words[i].position, document.words[i].bytes);
    }
  };
  RC_ASSERT(kestan::ReadDocuments(store, take, at_once) == kestan::StoreError::kNone);
  RC_ASSERT(read == expected);
}

}  // namespace
}  // namespace kestan_tests
