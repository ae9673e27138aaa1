// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/inverting/posting_table.h"

#include <gtest/gtest.h>
#include <kestan/index_builder.h>
#include <rapidcheck.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "search/index/inverting/arena.h"
#include "tests/support/stored_records.h"

namespace kestan::search {
namespace {

using kestan_tests::Units;
using Records = std::map<std::string, std::pair<std::string, std::uint32_t>>;

// Returns the record of each term with its number of documents, and checks that terms are sorted.
Records RecordsOf(const PostingTable& table) {
  Records records;
  std::string last;
  for (const PostingTable::TermAddress term : table.SortedTerms()) {
    const std::string text(table.TermAt(term));
    EXPECT_TRUE(records.empty() || last < text) << last << " before " << text;
    std::string record = "something else";
    table.CopyRecord(term, &record);
    records[text] = {record, table.DocumentsOf(term)};
    last = text;
  }
  EXPECT_EQ(records.size(), table.terms());
  return records;
}

Records Table(const std::vector<std::string>& texts, bool with_positions = true) {
  PostingTable table(with_positions);
  Code code = 0;
  for (const std::string& text : texts) table.Add(++code, Tokenizer(text));
  return RecordsOf(table);
}

// The same with a map.
Records Plain(const std::vector<std::string>& texts, bool with_positions) {
  Records records;
  Code code = 0;
  for (const std::string& text : texts) {
    ++code;
    const Tokenizer words(text);
    for (const Tokenizer::Word& word : words.words()) {
      auto& [record, documents] = records[std::string(word.bytes)];
      ++documents;
      if (with_positions) {
        AppendPosting(code, word.positions, &record);
      } else {
        AppendPosting(code, &record);
      }
    }
  }
  return records;
}

TEST(PostingTableTest, HasARecordOfEachWordAndItsFoldedForm) {
  EXPECT_EQ(Table({"Hello world", "hello Hello"}),
            (Records{{"Hello", {Units({1, 1, 1, 2, 1, 2}), 2}},
                     {"hello", {Units({1, 1, 1, 2, 2, 1, 2}), 2}},
                     {"world", {Units({1, 1, 2}), 1}}}));
}

TEST(PostingTableTest, WithoutPositionsHasCodesAlone) {
  EXPECT_EQ(Table({"a b a", "a"}, false),
            (Records{{"a", {Units({1, 2}), 2}}, {"b", {Units({1}), 1}}}));
}

TEST(PostingTableTest, WithoutDocumentsHasNoTerms) { EXPECT_TRUE(Table({}).empty()); }

TEST(PostingTableTest, TermsAreSortedByAllTheirBytes) {
  const std::vector<std::string> text = {
      std::string("abcdefgh abcdefghi abcdefg ab ab\x01 b \xff") + " abcdefgz abcdefghia"};
  EXPECT_EQ(Table(text), Plain(text, true));
}

TEST(PostingTableTest, WordsAndPostingsLongerThanABlockAreKept) {
  std::vector<std::string> texts = {std::string(Arena::kBlockBytes * 2, 'w') + " x", "x"};
  for (int i = 0; i < 70'000; ++i) texts[1] += " again";
  texts.push_back(texts[1]);
  texts.push_back("x again " + texts[0]);
  EXPECT_EQ(Table(texts), Plain(texts, true));
}

TEST(PostingTableTest, ManyTermsAndLongRecordsAreKept) {
  std::vector<std::string> texts;
  for (int i = 0; i < 3000; ++i) {
    texts.push_back("common");
    for (int word = 0; word < 30; ++word) texts.back() += " w" + std::to_string(i * word % 40'000);
  }
  EXPECT_EQ(Table(texts), Plain(texts, true));
  EXPECT_EQ(Table(texts, false), Plain(texts, false));
}

TEST(PostingTableTest, IsWhatAMapWouldHaveForRandomTexts) {
  EXPECT_TRUE(
      rc::check([](const std::vector<std::vector<std::uint8_t>>& documents, bool positions) {
        std::vector<std::string> texts;
        for (const auto& document : documents) {
          texts.emplace_back();
          for (const std::uint8_t word : document)
            texts.back() += "W" + std::to_string(word % 50) + " ";
        }
        RC_ASSERT(Table(texts, positions) == Plain(texts, positions));
      }));
}

TEST(PostingTableTest, TakesLittleMoreMemoryThanTheRecordsOfCommonWords) {
  PostingTable table(true);
  std::string text;
  for (int word = 0; word < 500; ++word) text += "word" + std::to_string(word) + " ";
  const Tokenizer words(text);
  std::size_t bytes = 0;
  for (Code code = 1; code <= 20'000; ++code) table.Add(code, words);
  for (const auto& [term, record] : RecordsOf(table)) bytes += record.first.size();
  EXPECT_LT(static_cast<double>(table.memory()), 1.2 * static_cast<double>(bytes));
}

TEST(ArenaTest, MemoryIsAlignedAndDoesNotOverlap) {
  Arena arena;
  std::vector<std::pair<Arena::Address, std::size_t>> taken;
  for (std::size_t i = 0; i < 2000; ++i) {
    const std::size_t bytes = i % 100 == 7 ? Arena::kBlockBytes - 4 * (i % 3) : 1 + i * 37 % 3000;
    const Arena::Address address = arena.Allocate(bytes);
    EXPECT_NE(address, 0u);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(arena.At(address)) % Arena::kUnitBytes, 0u);
    std::fill_n(arena.At(address), bytes, static_cast<char>(i));
    taken.emplace_back(address, bytes);
  }
  for (std::size_t i = 0; i < taken.size(); ++i) {
    const std::string bytes(arena.At(taken[i].first), taken[i].second);
    EXPECT_EQ(bytes, std::string(taken[i].second, static_cast<char>(i)));
  }
}

}  // namespace
}  // namespace kestan::search
