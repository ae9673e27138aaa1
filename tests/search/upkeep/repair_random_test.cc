// SPDX-License-Identifier: GPL-3.0-or-later
// Repairs of indexes with random damage: what comes of them agrees with itself.
#include <gtest/gtest.h>
#include <kestan/search.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/search/index/read_index.h"
#include "tests/search/upkeep/kept_index.h"
#include "tests/support/environment.h"
#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

namespace fs = std::filesystem;

using kestan_tests::ReadDocument;
using kestan_tests::ReadDocuments;
using kestan_tests::ReadFile;
using kestan_tests::ReadIndex;
using kestan_tests::WriteFile;

// Words with and without capitals, of one letter and with hyphens, some of which have the keys of
// texts: document "n7" may have a title when "t-n7" is a word.
const std::vector<std::string> kSpecialWords = {"a",     "B",     "x",      "t-n7",   "T-shirt",
                                                "d-day", "D-day", "c-ab",   "e-mail", "w-boson",
                                                "u-n11", "s-n5",  "g-code", "Ab",     "ab"};

class RepairRandomTest : public testing::TestWithParam<bool> {
 protected:
  bool with_positions() const { return GetParam(); }
  unsigned Below(std::size_t end) { return static_cast<unsigned>(random_() % end); }

  std::string Words() {
    std::string words;
    for (unsigned count = Below(60); count > 0; --count) {
      const unsigned kind = Below(8);
      if (kind == 0) {
        words += kSpecialWords[Below(kSpecialWords.size())];
      } else {
        words += (kind < 3 ? "Wo" : "wo") + Letters(Below(kind == 1 ? 1000 : 40));
      }
      words += ' ';
    }
    return words;
  }

  // Returns letters that make no stop word.
  static std::string Letters(unsigned number) {
    std::string letters;
    for (; number > 0 || letters.size() < 2; number /= 10) {
      letters += static_cast<char>('k' + number % 10);
    }
    return letters;
  }

  void Make() {
    fs::remove_all(folder_);
    WriterOptions options;
    options.with_positions = with_positions();
    options.threads = 1;
    auto writer = IndexWriter::Open(folder_, options);
    ASSERT_TRUE(writer.ok());
    for (unsigned segment = 0; segment < 3; ++segment) {
      for (unsigned i = 0; i < 40; ++i) Add(&*writer, segment * 40 + i);
      ASSERT_TRUE(writer->Commit().ok());
    }
    for (unsigned i = 0; i < 5; ++i) static_cast<void>(writer->Remove("n" + Number(120)));
    for (unsigned i = 0; i < 5; ++i) {
      static_cast<void>(writer->Rename("n" + Number(120), "renamed" + Number(9)));
    }
    ASSERT_TRUE(writer->Commit().ok());
  }

  std::string Number(std::size_t end) { return std::to_string(Below(end)); }

  void Add(IndexWriter* writer, unsigned number) {
    Document document;
    document.name = "n" + std::to_string(number);
    document.words = Words();
    if (Below(2) == 0) document.title = "Title " + Words();
    if (Below(3) == 0) document.summary = Words();
    if (Below(3) == 0) document.host_data = std::string("host\0", 5) + Words();
    ASSERT_TRUE(writer->Add(document).ok());
  }

  // Changes bytes or blocks of a file, or what it has at its end.
  void Damage(const std::string& name) {
    std::string bytes = ReadFile(folder_ + "/" + name);
    if (bytes.empty()) return;
    const std::size_t at = Below(bytes.size());
    const std::size_t block = at / 512 * 512;
    const std::size_t count = std::min<std::size_t>(512, bytes.size() - block);
    switch (Below(6)) {
      case 0:
        for (unsigned i = Below(30); i > 0; --i) bytes[Below(bytes.size())] = Byte();
        break;
      case 1:
        bytes[at] = Byte();
        break;
      case 2:
        bytes.replace(block, count, count, '\0');
        break;
      case 3:
        for (std::size_t i = 0; i < count; ++i) bytes[block + i] = Byte();
        break;
      case 4:
        bytes.replace(block, count, bytes.substr(Below(bytes.size()) / 512 * 512, count));
        break;
      default:
        bytes.resize(Below(5) == 0 ? at : bytes.size() - Below(std::min<std::size_t>(900, at + 1)));
    }
    WriteFile(folder_ + "/" + name, bytes);
  }

  char Byte() { return static_cast<char>(Below(256)); }

  std::vector<std::string> FilesOf(const std::string& ending) const {
    std::vector<std::string> names;
    for (const std::string& name : kestan_tests::FilesIn(folder_)) {
      if (fs::path(name).extension() == ending) names.push_back(name);
    }
    return names;
  }

  // Damages one segment, sometimes more and files beside them.
  void DamageSome() {
    const std::vector<std::string> segments = FilesOf(".segment");
    for (unsigned i = 1 + Below(2); i > 0; --i) Damage(segments[Below(segments.size())]);
    if (Below(2) == 0) return;
    for (const char* const ending : {".terms", ".documents", ".edits"}) {
      const std::vector<std::string> names = FilesOf(ending);
      if (Below(3) == 0 && !names.empty()) Damage(names[Below(names.size())]);
    }
    if (Below(4) == 0) Damage("MANIFEST");
  }

  const kestan_tests::TempDir dir_;
  const std::string folder_ = dir_ / "index";
  const std::string new_ = dir_ / "new";
  std::mt19937 random_;
};

std::string Folded(std::string word) {
  for (char& byte : word) byte = static_cast<char>(byte | 0x20);
  return word;
}

// The words of a document by position: those without capitals, which stand alone there.
std::map<unsigned, std::string> ByPosition(const std::string& name, const ReadDocument& document) {
  std::map<unsigned, std::string> placed;
  for (const auto& [word, positions] : document.words) {
    if (Folded(word) != word) continue;
    for (const unsigned position : positions) {
      EXPECT_TRUE(placed.emplace(position, word).second) << name << " " << position << " " << word;
    }
  }
  return placed;
}

// Whatever its folded form's key is, a word with capitals stands where that form stands.
void CheckForms(const std::string& name, const ReadDocument& document) {
  for (const auto& [word, positions] : document.words) {
    if (Folded(word) == word || (word.size() > 1 && word[1] == '-')) continue;
    const auto folded = document.words.find(Folded(word));
    ASSERT_TRUE(folded != document.words.end()) << name << " " << word;
    EXPECT_TRUE(std::includes(folded->second.begin(), folded->second.end(), positions.begin(),
                              positions.end()))
        << name << " " << word;
  }
}

// A query has no shorter words, nor such with hyphens.
bool CanBeAsked(const std::string& word) {
  return word.size() > 2 && word.find('-') == std::string::npos;
}

// Compares what searches find with what the documents say.
void CheckSearches(const std::string& path, const ReadDocuments& documents) {
  const auto reader = IndexReader::Open(path);
  ASSERT_TRUE(reader.ok()) << reader.status().ToString();
  std::map<std::string, std::uint64_t> words;
  std::map<std::string, std::uint64_t> phrases;
  for (const auto& [name, document] : documents) {
    std::set<std::string> pairs;
    const std::map<unsigned, std::string> placed = ByPosition(name, document);
    CheckForms(name, document);
    for (const auto& [word, positions] : document.words) ++words[word];
    for (const auto& [position, word] : placed) {
      const auto next = placed.find(position + 1);
      if (next != placed.end() && CanBeAsked(word) && CanBeAsked(next->second))
        pairs.insert("\"" + word + " " + next->second + "\"");
    }
    for (const std::string& pair : pairs) ++phrases[pair];
  }
  const auto terms = reader->Terms("");
  ASSERT_TRUE(terms.ok());
  ASSERT_EQ(terms->size(), words.size());
  for (const auto& term : *terms) EXPECT_EQ(term.documents, words[term.term]) << term.term;
  for (const auto& [word, count] : words) {
    if (!CanBeAsked(word) || Folded(word) != word) continue;
    EXPECT_EQ(*reader->Count("\"" + word + "\""), count) << word;
  }
  std::size_t tried = 0;
  for (const auto& [phrase, count] : phrases) {
    if (++tried % 7 != 0) continue;
    EXPECT_EQ(*reader->Count(phrase), count) << phrase;
  }
}

TEST_P(RepairRandomTest, WhatIsLeftAgreesWithItself) {
  const auto seeds =
      static_cast<unsigned>(kestan_tests::NumberFromEnvironment("KESTAN_REPAIR_SEEDS", 60));
  const auto first =
      static_cast<unsigned>(kestan_tests::NumberFromEnvironment("KESTAN_REPAIR_FIRST_SEED", 0));
  unsigned repaired = 0;
  for (unsigned seed = first; seed < first + seeds && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    random_.seed(seed);
    Make();
    const ReadDocuments before = ReadIndex(folder_);
    DamageSome();
    fs::remove_all(new_);
    std::set<std::string> named;
    const auto report = RepairIndex(folder_, new_, [&](const RepairItem& item) {
      if (item.kind <= RepairKind::kLost) named.insert(item.name);
      return true;
    });
    if (!report.ok()) {
      EXPECT_EQ(report.status().code(), StatusCode::kDamaged) << report.status().ToString();
      continue;
    }
    ++repaired;
    EXPECT_EQ(kestan_tests::Faults(new_), 0u);
    ReadDocuments after;
    ASSERT_NO_THROW(after = ReadIndex(new_));
    for (const auto& [name, document] : after) EXPECT_EQ(named.count(name), 1u) << name;
    EXPECT_EQ(report->saved + report->words_missing + report->half_written, after.size());
    CheckSearches(new_, after);
  }
  EXPECT_TRUE(HasFailure() || repaired > seeds / 2) << repaired;
}

INSTANTIATE_TEST_SUITE_P(Positions, RepairRandomTest, testing::Bool(),
                         [](const auto& test) { return test.param ? "With" : "Without"; });

}  // namespace
}  // namespace kestan::search
