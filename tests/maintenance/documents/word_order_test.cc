// SPDX-License-Identifier: GPL-3.0-or-later
// The words of a document in the order of its text.
#include <kestan/maintenance/documents/word_order.h>

#include <initializer_list>
#include <string>
#include <utility>

#include "tests/maintenance/maintenance_test.h"

namespace kestan_tests {
namespace {

// An index of the words "Cat", "cat" and "dog", with these numbers.
constexpr kestan::WordId kCapitalCat = 0;
constexpr kestan::WordId kCat = 1;
constexpr kestan::WordId kDog = 2;

class WordOrderTest : public testing::Test {
 protected:
  void SetUp() override {
    const TempDir folder;
    Plant(folder / "index", {{"Cat", "x"}, {"cat", "x"}, {"dog", "x"}});
    Database store;
    ASSERT_EQ(store.Open((folder / "index").c_str(), 0), 0);
    ASSERT_EQ(contents_.Gather(store), 0);
  }

  // Restores the words at these positions, each as "word@position".
  std::string Restored(
      std::initializer_list<std::pair<kestan::Position, kestan::WordId>> positions) {
    kestan::Vector<kestan::Place> places;
    for (const auto& [position, word] : positions) {
      places.push_back(kestan::MakePlace(7, position, word));
    }
    std::string text;
    for (const kestan::PlacedWord& word :
         order_.Restore(places.data(), places.data() + places.size())) {
      text += std::string(word.bytes) + "@" + std::to_string(word.position) + " ";
    }
    return text;
  }

  kestan::Contents contents_;
  kestan::WordOrder order_{contents_};
};

TEST_F(WordOrderTest, ADocumentWithoutPlacesHasNoWords) { EXPECT_EQ(Restored({}), ""); }

TEST_F(WordOrderTest, WordsComeByPosition) {
  EXPECT_EQ(Restored({{1, kDog}, {2, kCat}, {65535, kDog}}), "dog@1 cat@2 dog@65535 ");
}

TEST_F(WordOrderTest, WordsOfTheDocumentBeforeAreGone) {
  Restored({{1, kDog}, {2, kCat}});
  EXPECT_EQ(Restored({{1, kCat}}), "cat@1 ");
}

TEST_F(WordOrderTest, AWordWithCapitalsReplacesItsFoldedForm) {
  EXPECT_EQ(Restored({{1, kCapitalCat}, {1, kCat}}), "Cat@1 ");
  EXPECT_EQ(Restored({{1, kCapitalCat}, {2, kCat}}), "Cat@1 cat@2 ");
}

TEST_F(WordOrderTest, WhatIsLeftOfTheFoldedFormWasInTheTextItself) {
  EXPECT_EQ(Restored({{1, kCapitalCat}, {1, kCat}, {1, kCat}, {1, kDog}}), "Cat@1 cat@1 dog@1 ");
}

TEST_F(WordOrderTest, AFoldedFormThatIsMissingTakesNothingAway) {
  EXPECT_EQ(Restored({{1, kCapitalCat}, {1, kCapitalCat}, {1, kCat}}), "Cat@1 Cat@1 ");
  EXPECT_EQ(Restored({{1, kCapitalCat}, {1, kDog}}), "Cat@1 dog@1 ");
}

TEST_F(WordOrderTest, SeveralWordsAtOnePositionComeInOrderOfTheirBytes) {
  EXPECT_EQ(Restored({{3, kCat}, {3, kDog}, {3, kDog}}), "cat@3 dog@3 dog@3 ");
}

}  // namespace
}  // namespace kestan_tests
