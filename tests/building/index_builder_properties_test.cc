// SPDX-License-Identifier: GPL-3.0-or-later
// The same documents through class Kestan and through IndexBuilder make the same records, byte for
// byte, and indexes that answer and grow alike. More and larger collections:
//   RC_PARAMS="max_success=2000 max_size=300" building_tests
#include <gtest/gtest.h>
#include <kestan/maintenance.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/building/plain_documents.h"
#include "tests/support/temp_dir.h"

namespace kestan_tests {
namespace {

using kestan::SideRecord;

// Words that share their folded forms, are longer than others or look like the keys of other
// records. None is the key of another record of these indexes.
const std::vector<std::string> kWords = {"cat", "Cat",      "CAT",    "dog",     "Dog@",  "a",
                                         "B",   "\x80\xc3", "e-mail", "t-shirt", "d-Day", "c-",
                                         "g-",  "G-codes",  "x-",     "-",       "--",    "w-red",
                                         "u",   "s-none",   "naïve",  "emphatic"};

rc::Gen<std::string> Texts() {
  const auto words = rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(kWords));
  return rc::gen::map(words, [](const std::vector<std::string>& listed) {
    std::string text;
    for (const std::string& word : listed) text += word + (text.size() % 3 == 0 ? "\n " : " ");
    return text;
  });
}

rc::Gen<PlainDocument> Documents() {
  const auto kinds = rc::gen::element(SideRecord::kTitle, SideRecord::kSummary, SideRecord::kUser);
  const auto lines = rc::gen::element<std::string>("", "Cats and Dogs", "\x01\x02", "g-code");
  using SideRecords = std::map<SideRecord, std::string>;
  const auto listed = rc::gen::container<std::vector<std::pair<SideRecord, std::string>>>(
      rc::gen::pair(kinds, lines));
  return rc::gen::build<PlainDocument>(
      rc::gen::set(&PlainDocument::text, Texts()),
      rc::gen::set(&PlainDocument::side_records, rc::gen::map(listed, [](const auto& records) {
        return SideRecords(records.begin(), records.end());
      })));
}

// Documents whose names differ, and are not those that words above could name a record of.
rc::Gen<PlainDocuments> Collections() {
  const auto listed = rc::gen::container<PlainDocuments>(Documents());
  return rc::gen::map(listed, [](PlainDocuments documents) {
    std::size_t number = 0;
    for (PlainDocument& document : documents) document.name = std::to_string(number++) + " n-a.txt";
    return documents;
  });
}

std::multiset<std::string> FindingsIn(const std::string& path) {
  std::multiset<std::string> lines;
  Database store;
  EXPECT_EQ(store.Open(path.c_str(), 0), 0);
  const auto check = kestan::CheckIndex(store, [&](std::string_view line) { lines.emplace(line); });
  EXPECT_EQ(check.file_error, kestan::StoreError::kNone);
  return lines;
}

// Words such as "e-mail", which no shrink purges, are noted; nothing else is found.
bool IsNote(const std::string& line) { return line.find(": note: ") != std::string::npos; }

// An index that grew and one that was built.
struct Twins {
  explicit Twins(const PlainDocuments& documents, std::uint32_t option_flags = 0,
                 std::size_t expected_records = 100) {
    Kestan engine;
    EXPECT_EQ(engine.OpenIndex(grown.c_str(), 1), 0);
    if (option_flags != 0) engine.SetOptionFlag(option_flags);
    AddTo(&engine, documents);
    engine.CloseIndex();
    const auto times = TimesIn(Dump(grown), documents);
    EXPECT_EQ(BuildIndex(built, documents, times, option_flags, expected_records),
              kestan::StoreError::kNone);
  }

  TempDir folder;
  const std::string grown = folder / "grown";
  const std::string built = folder / "built";
};

std::string Matches(Kestan* engine, const std::string& word) {
  const int id = engine->QueryWord(word.c_str());
  std::string listing = engine->QueryResults(id);
  engine->FreeQueryResult(id);
  return listing;
}

// What an index answers: all documents, and those of each word.
std::string AnswersOf(const std::string& path) {
  Kestan engine;
  EXPECT_EQ(engine.OpenIndex(path.c_str(), 0), 0);
  std::string answers;
  for (const std::string& word : kWords) answers += word + ": " + Matches(&engine, word);
  return answers;
}

// Goes on with an index as a host does that changes it.
void Change(const std::string& path, const PlainDocuments& documents) {
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(path.c_str(), 1), 0);
  engine.AddDocumentWords("later", "cat Later e-mail");
  for (std::size_t i = 0; i < documents.size(); i += 2) {
    engine.RemoveDocumentWords(documents[i].name.c_str());
  }
  engine.FlushIndex();
  engine.AddDocumentWords("0 n-a.txt", "dog again");
  engine.ShrinkIndex();
  engine.AddDocumentWords("last", "cat after the shrink");
  engine.CloseIndex();
}

RC_GTEST_PROP(IndexBuilderPropertiesTest, MakesTheRecordsThatClassKestanMakes, ()) {
  const auto documents = *Collections();
  const auto flags = *rc::gen::element<std::uint32_t>(0, kestan::kFlagNoPositions, 6);
  const Twins twins(documents, flags, *rc::gen::element<std::size_t>(0, 3, 1000, 100000));
  RC_ASSERT(Dump(twins.built) == Dump(twins.grown));
}

RC_GTEST_PROP(IndexBuilderPropertiesTest, MakesAnIndexThatIsValidAndAnswersAlike, ()) {
  const auto documents = *Collections();
  const Twins twins(documents, *rc::gen::element<std::uint32_t>(0, kestan::kFlagNoPositions));
  const auto findings = FindingsIn(twins.built);
  RC_ASSERT(std::all_of(findings.begin(), findings.end(), IsNote));
  RC_ASSERT(findings == FindingsIn(twins.grown));
  RC_ASSERT(AnswersOf(twins.built) == AnswersOf(twins.grown));
}

RC_GTEST_PROP(IndexBuilderPropertiesTest, MakesAnIndexThatAWriterCanGoOnWith, ()) {
  const auto documents = *Collections();
  const Twins twins(documents, *rc::gen::element<std::uint32_t>(0, kestan::kFlagNoPositions));
  Change(twins.built, documents);
  Change(twins.grown, documents);
  RC_ASSERT(WithoutTimes(Dump(twins.built)) == WithoutTimes(Dump(twins.grown)));
  RC_ASSERT(FindingsIn(twins.built) == FindingsIn(twins.grown));
}

// Documents of many words, most of which stand in few documents.
PlainDocuments LargeCollection() {
  PlainDocuments documents;
  unsigned number = 1;
  for (unsigned i = 0; i < 400; ++i) {
    PlainDocument document{std::to_string(i) + ".txt", "", {}};
    for (unsigned j = 0; j < 150; ++j) {
      number = number * 1664525 + 1013904223;
      const unsigned spread = (number >> 8) % 100 < 70 ? 300 : 30000;
      document.text += (number >> 4 & 7) == 0 ? "Word" : "word";
      document.text += std::to_string((number >> 12) % spread) + " ";
    }
    if (i % 3 == 0) document.side_records[SideRecord::kTitle] = "Document " + std::to_string(i);
    documents.push_back(document);
  }
  return documents;
}

TEST(LargeIndexBuilderTest, BuildsThousandsOfWordsThatClassKestanReadsAndChanges) {
  const PlainDocuments documents = LargeCollection();
  for (const std::uint32_t flags : {0u, kestan::kFlagNoPositions}) {
    const Twins twins(documents, flags, 10000);
    const Records records = Dump(twins.built);
    EXPECT_GT(records.size(), 10000u);
    EXPECT_EQ(records, Dump(twins.grown));
    EXPECT_TRUE(FindingsIn(twins.built).empty());
    Change(twins.built, documents);
    Change(twins.grown, documents);
    EXPECT_EQ(WithoutTimes(Dump(twins.built)), WithoutTimes(Dump(twins.grown)));
    EXPECT_EQ(FindingsIn(twins.built), FindingsIn(twins.grown));
  }
}

}  // namespace
}  // namespace kestan_tests
