// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/segment/term_dictionary.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/search/segment/dictionary_files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

class TermDictionaryTest : public testing::Test {
 protected:
  TermDictionary Make(const TermMap& terms) {
    std::filesystem::remove(path_);
    EXPECT_TRUE(WriteDictionary(terms, path_).ok());
    return std::move(*OpenDictionary(path_));
  }

  kestan_tests::TempDir dir_;
  std::string path_ = dir_ / "1.terms";
};

void ExpectFinds(const TermDictionary& dictionary, const TermMap& terms) {
  for (const auto& [term, facts] : terms) {
    const auto found = dictionary.Find(term);
    ASSERT_TRUE(found.ok() && found->has_value()) << term;
    EXPECT_EQ((*found)->term, term);
    EXPECT_EQ(FactsOf(**found), facts) << term;
    EXPECT_EQ((*found)->place.key_bytes, std::get<1>(facts) == 0 ? 0 : term.size());
  }
}

TEST_F(TermDictionaryTest, FindsEveryTermAndNoOther) {
  const TermMap terms = SomeTerms(5000);
  const TermDictionary dictionary = Make(terms);
  EXPECT_EQ(dictionary.size(), terms.size());
  ExpectFinds(dictionary, terms);
  for (const auto& [term, facts] : terms) {
    for (const std::string& other : {term + "0", term.substr(0, term.size() - 1), term + '\0'}) {
      const auto found = dictionary.Find(other);
      ASSERT_TRUE(found.ok());
      EXPECT_EQ(found->has_value(), terms.count(other) == 1) << other;
    }
  }
  EXPECT_FALSE(dictionary.Find("")->has_value());
  EXPECT_FALSE(dictionary.Find("zebra")->has_value());
}

TEST_F(TermDictionaryTest, GoesThroughAllTermsInOrder) {
  const TermMap terms = SomeTerms(1000);
  const TermDictionary dictionary = Make(terms);
  TermDictionary::Cursor cursor(dictionary);
  for (const auto& [term, facts] : terms) {
    ASSERT_TRUE(*cursor.Next());
    EXPECT_EQ(cursor.entry().term, term);
    EXPECT_EQ(FactsOf(cursor.entry()), facts);
  }
  EXPECT_FALSE(*cursor.Next());
  EXPECT_FALSE(*cursor.Next());
}

TEST_F(TermDictionaryTest, ACursorKeepsItsEntryWhenItMoves) {
  const TermDictionary dictionary = Make({{"a", {1, 10, 2}}, {"b", {2, 13, 4}}});
  TermDictionary::Cursor first(dictionary);
  ASSERT_TRUE(*first.Next());
  TermDictionary::Cursor second = std::move(first);
  EXPECT_EQ(second.entry().term, "a");
  ASSERT_TRUE(*second.Next());
  EXPECT_EQ(second.entry().term, "b");
}

TEST_F(TermDictionaryTest, ForEachBeginsWhereItIsTold) {
  const TermMap terms = SomeTerms(2000);
  const TermDictionary dictionary = Make(terms);
  for (const char* from : {"", "t", "term", "term5", "term50", "term9999", "term99999", "u"}) {
    EXPECT_EQ(*ReadDictionary(dictionary, from), TermMap(terms.lower_bound(from), terms.end()))
        << from;
  }
}

TEST_F(TermDictionaryTest, ForEachEndsWhenItIsTold) {
  const TermDictionary dictionary = Make(SomeTerms(500));
  int visits = 0;
  EXPECT_TRUE(dictionary.ForEach("", [&](const TermEntry&) { return ++visits < 100; }).ok());
  EXPECT_EQ(visits, 100);
}

TEST_F(TermDictionaryTest, ADictionaryCanBeEmpty) {
  const TermDictionary dictionary = Make({});
  EXPECT_EQ(dictionary.size(), 0u);
  EXPECT_FALSE(dictionary.Find("a")->has_value());
  EXPECT_TRUE(ReadDictionary(dictionary)->empty());
  TermDictionary::Cursor cursor(dictionary);
  EXPECT_FALSE(*cursor.Next());
}

TEST_F(TermDictionaryTest, TermsMayBeEmptyAndVeryLong) {
  TermMap terms = {{"", {1, 100, 2}}, {std::string(1, '\0'), {2, 300, 4}}};
  for (int i = 0; i < 300; ++i) {
    std::string term(60'000, 'x');
    term.replace(static_cast<std::size_t>(i) * 199, 1, "y");
    terms[term] = {3, 1000, 6};
  }
  terms[std::string(60'000, '\xff')] = {4, 5, 6};
  const TermDictionary dictionary = Make(terms);
  ExpectFinds(dictionary, terms);
  EXPECT_TRUE(*ReadDictionary(dictionary) == terms);
}

TEST_F(TermDictionaryTest, NumbersMayBeAsLargeAsTheyGet) {
  const TermMap terms = {{"a", {UINT32_MAX, UINT64_MAX, UINT32_MAX}},
                         {"b", {0, 1, 0}},
                         {"c", {UINT32_MAX, UINT64_MAX / 2, UINT32_MAX}},
                         {"d", {7, 0, 0}},
                         {"e", {1, UINT64_MAX / 2 + 1, 1}}};
  EXPECT_EQ(*ReadDictionary(Make(terms)), terms);
}

TEST_F(TermDictionaryTest, TermsOutOfOrderAreRefusedAndNothingIsLeft) {
  for (const char* second : {"a", "b"}) {
    TermDictionaryWriter writer;
    ASSERT_TRUE(writer.Create(path_).ok());
    writer.Add({"b", 1, {}});
    writer.Add({second, 1, {}});
    EXPECT_EQ(writer.Finish().status().code(), StatusCode::kInvalidArgument);
    EXPECT_FALSE(std::filesystem::exists(path_));
  }
}

TEST_F(TermDictionaryTest, SaysToWhichSegmentItBelongs) {
  TermDictionaryWriter writer;
  ASSERT_TRUE(writer.Create(path_).ok());
  writer.SetSegment(0x0123456789abcdef);
  ASSERT_TRUE(writer.Finish().ok());
  EXPECT_EQ(OpenDictionary(path_)->segment_checksum(), 0x0123456789abcdefu);
}

TEST_F(TermDictionaryTest, RecordsSideBySideTakeFewBytes) {
  TermMap terms;
  std::uint64_t offset = 1 << 20;
  for (int i = 0; i < 64; ++i) {
    std::string term = "word" + std::string(1, static_cast<char>('0' + i));
    terms[term] = {1, offset, 6};
    offset += term.size() + 6;
  }
  Make(terms);
  // Five bytes a term: shared, length, one letter, documents, value. The first has its whole text
  // and its offset.
  constexpr std::size_t kBlock = 64 * 5 + 4 + 4;
  EXPECT_EQ(std::filesystem::file_size(path_), 16 + kBlock + 20 + 40);
}

TEST_F(TermDictionaryTest, AnswersAsAMapDoesForRandomTerms) {
  const bool holds = rc::check("a dictionary is a sorted map", [this] {
    const auto letters = rc::gen::container<std::string>(rc::gen::inRange('a', 'd'));
    const auto bytes = rc::gen::arbitrary<std::string>();
    const auto terms =
        *rc::gen::scale(3, rc::gen::container<TermMap>(
                               rc::gen::oneOf(letters, bytes),
                               rc::gen::map(rc::gen::arbitrary<TermFacts>(), [](TermFacts facts) {
                                 if (std::get<1>(facts) == 0) std::get<2>(facts) = 0;
                                 return facts;
                               })));
    const TermDictionary dictionary = Make(terms);
    RC_ASSERT(*ReadDictionary(dictionary) == terms);
    for (const auto& [term, facts] : terms) {
      const auto found = dictionary.Find(term);
      RC_ASSERT(found.ok() && found->has_value() && FactsOf(**found) == facts);
    }
    const std::string other = *rc::gen::oneOf(letters, bytes);
    RC_ASSERT(dictionary.Find(other)->has_value() == (terms.count(other) == 1));
    RC_ASSERT(*ReadDictionary(dictionary, other) == TermMap(terms.lower_bound(other), terms.end()));
  });
  EXPECT_TRUE(holds);
}

}  // namespace
}  // namespace kestan::search
