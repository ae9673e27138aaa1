// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/upkeep/repairing/word_places.h"

#include <gtest/gtest.h>
#include <kestan/index_builder.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

// Positions of a word by the codes of documents.
using Posted = std::map<unsigned, std::vector<Position>>;
using Words = std::map<std::string, Posted>;

class WordPlacesTest : public testing::Test {
 protected:
  // Resolves what `words` say of documents, of which `lengths` says how many words they have.
  Words Resolve(const Words& words, const std::vector<std::optional<std::uint32_t>>& lengths,
                bool with_positions = true) {
    Write(words, lengths.size(), with_positions);
    IndexFile file;
    EXPECT_EQ(file.Open(path_.c_str()), StoreError::kNone);
    SalvagedTerms terms(
        {&file, path_, nullptr, nullptr, false, with_positions, static_cast<Code>(lengths.size())});
    EXPECT_TRUE(terms
                    .Find([](std::string_view key) {
                      return key.substr(0, 2) == "g-" || key.substr(0, 2) == "c-" ||
                             key.substr(0, 3) == "d-n";
                    })
                    .ok());
    std::vector<std::optional<std::uint32_t>> by_code = {std::nullopt};
    by_code.insert(by_code.end(), lengths.begin(), lengths.end());
    WordPlaces places(&terms, by_code);
    EXPECT_TRUE(places.Resolve().ok());
    counts_ = places.counts();
    Words kept;
    SalvagedPostings postings;
    for (std::size_t i = 0; i < terms.size(); ++i) {
      EXPECT_TRUE(places.Read(i, &postings).ok());
      for (const SalvagedPosting& posting : postings) {
        const Positions positions = postings.PositionsOf(posting);
        kept[std::string(terms.TermAt(i))][posting.code] = {positions.begin(), positions.end()};
      }
    }
    return kept;
  }

  void Write(const Words& words, std::size_t documents, bool with_positions) {
    std::filesystem::remove(path_);
    IndexBuilder builder;
    IndexBuilder::Options options;
    options.option_flags = with_positions ? 0 : kFlagNoPositions;
    ASSERT_EQ(builder.Open(path_.c_str(), options), StoreError::kNone);
    for (std::size_t code = 1; code <= documents; ++code) {
      builder.AddDocument(static_cast<Code>(code), "n" + std::to_string(code), 1);
    }
    for (const auto& [word, posted] : words) {
      std::string record;
      for (const auto& [code, positions] : posted) {
        const Positions view = {positions.data(), positions.size()};
        if (with_positions) AppendPosting(static_cast<Code>(code), view, &record);
        if (!with_positions) AppendPosting(static_cast<Code>(code), &record);
      }
      builder.AddWord(word, record);
    }
    ASSERT_EQ(builder.Finish(), StoreError::kNone);
  }

  const kestan_tests::TempDir dir_;
  const std::string path_ = dir_ / "index";
  WordPlaces::Counts counts_;
};

TEST_F(WordPlacesTest, WordsThatAgreeStay) {
  const Words words = {{"Dog", {{1, {2}}}},
                       {"cat", {{1, {1, 3}}, {2, {1}}}},
                       {"dog", {{1, {2, 4}}}},
                       {"e-mail", {{2, {2}}}}};
  EXPECT_EQ(Resolve(words, {4, 2}), words);
  EXPECT_EQ(Resolve(words, {std::nullopt, std::nullopt}), words);
  EXPECT_FALSE(counts_.any());
}

TEST_F(WordPlacesTest, NoWordStandsBehindTheLast) {
  const Words kept = Resolve({{"cat", {{1, {1, 2, 3}}}}, {"Dog", {{1, {3}}}}}, {2});
  EXPECT_EQ(kept, (Words{{"cat", {{1, {1, 2}}}}}));
  EXPECT_EQ(counts_.behind, 1u);
}

// A posting of another document clashes with words at all its positions.
TEST_F(WordPlacesTest, OfSeveralWordsAtAPositionTheOneWithMoreOthersYields) {
  const Words kept =
      Resolve({{"ape", {{1, {1, 3}}}}, {"cat", {{1, {1, 2}}}}, {"dog", {{1, {3, 4}}}}}, {4});
  EXPECT_EQ(kept, (Words{{"cat", {{1, {1, 2}}}}, {"dog", {{1, {3, 4}}}}}));
  EXPECT_EQ(counts_.shared, 2u);
}

TEST_F(WordPlacesTest, ElseTheLaterWordYields) {
  const Words kept = Resolve({{"cat", {{1, {1}}}}, {"dog", {{1, {1}}}}}, {std::nullopt});
  EXPECT_EQ(kept, (Words{{"cat", {{1, {1}}}}}));
}

TEST_F(WordPlacesTest, AWordInDoubtYieldsFirst) {
  const Words kept = Resolve({{"cat", {{1, {3, 2, 1}}}}, {"dog", {{1, {1}}}}}, {3});
  EXPECT_EQ(kept, (Words{{"cat", {{1, {2, 3}}}}, {"dog", {{1, {1}}}}}));
}

TEST_F(WordPlacesTest, FormsWithoutCapitalsAreRestoredWhereNoWordStands) {
  const Words kept =
      Resolve({{"Dog", {{1, {1}}, {2, {2}}}}, {"DOG", {{1, {3}}}}, {"cat", {{1, {2}}}}}, {3, 2});
  EXPECT_EQ(kept, (Words{{"Dog", {{1, {1}}, {2, {2}}}},
                         {"DOG", {{1, {3}}}},
                         {"cat", {{1, {2}}}},
                         {"dog", {{1, {1, 3}}, {2, {2}}}}}));
  EXPECT_EQ(counts_.restored, 3u);
}

TEST_F(WordPlacesTest, CapitalsWhereAnotherWordStandsAreLeftOut) {
  const Words kept =
      Resolve({{"Dog", {{1, {1, 2}}}}, {"cat", {{1, {1}}}}, {"dog", {{1, {2}}}}}, {2});
  EXPECT_EQ(kept, (Words{{"Dog", {{1, {2}}}}, {"cat", {{1, {1}}}}, {"dog", {{1, {2}}}}}));
  EXPECT_EQ(counts_.forms, 1u);
}

// The form without capitals may have the key of another record.
TEST_F(WordPlacesTest, WordsWithHyphensNeedNoForm) {
  const Words words = {{"T-shirt", {{1, {1}}}}};
  EXPECT_EQ(Resolve(words, {1}), words);
}

TEST_F(WordPlacesTest, WithoutPositionsTheFormIsRestored) {
  const Words kept =
      Resolve({{"Dog", {{1, {}}, {2, {}}}}, {"cat", {{1, {}}}}, {"dog", {{2, {}}}}}, {5, 5}, false);
  EXPECT_EQ(kept,
            (Words{{"Dog", {{1, {}}, {2, {}}}}, {"cat", {{1, {}}}}, {"dog", {{1, {}}, {2, {}}}}}));
}

// Positions begin again after the last, so that words may share them.
TEST_F(WordPlacesTest, WordsOfALongTextMayShareAPosition) {
  const Words words = {{"cat", {{1, {1, 65535, 2}}}}, {"dog", {{1, {1}}}}, {"Dog", {{1, {1}}}}};
  EXPECT_EQ(Resolve(words, {65537}), words);
  EXPECT_EQ(Resolve(words, {std::nullopt}), words);
}

// So are those that follow: nobody knows where the two agree again.
TEST_F(WordPlacesTest, OfALongTextCapitalsAloneAreLeftOut) {
  const Words kept = Resolve(
      {{"cat", {{1, {1, 65535, 2}}}}, {"dog", {{1, {1, 3}}}}, {"Dog", {{1, {1, 2, 3}}}}}, {65539});
  EXPECT_EQ(kept.at("Dog"), (Posted{{1, {1}}}));
  EXPECT_EQ(counts_.forms, 2u);
}

// A text that ends at the last position or before it shares none.
TEST_F(WordPlacesTest, AKnownLengthSaysWhetherATextIsLong) {
  const Words words = {{"cat", {{1, {1, 65535}}}}, {"dog", {{1, {1}}}}};
  EXPECT_EQ(Resolve(words, {65535}).count("dog"), 0u);
  EXPECT_EQ(Resolve(words, {65536}).count("dog"), 1u);
}

}  // namespace
}  // namespace kestan::search
