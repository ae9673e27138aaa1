// SPDX-License-Identifier: GPL-3.0-or-later
// The places of words that postings give.
#include <kestan/maintenance/documents/places.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "tests/maintenance/maintenance_test.h"

namespace kestan_tests {
namespace {

using kestan::Code;
using kestan::CodeSet;
using kestan::MakePlace;

using Places = std::vector<kestan::Place>;

class PlacesTest : public testing::Test {
 protected:
  void Open(const Records& records) {
    Plant(path_, records);
    ASSERT_EQ(store_.Open(path_.c_str(), 0), 0);
    ASSERT_EQ(contents_.Gather(store_), 0);
  }

  // Returns the places of words in the documents of `codes`.
  Places Found(std::initializer_list<Code> codes) {
    CodeSet wanted;
    for (const Code code : codes) wanted.set(code);
    kestan::Vector<kestan::Place> places{1, 2, 3};  // left from before
    EXPECT_EQ(kestan::FindPlaces(store_, contents_, wanted, 2, &places), 0);
    return {places.begin(), places.end()};
  }

  std::size_t CountOf(Code code) {
    kestan::PlaceCounts counts;
    EXPECT_EQ(kestan::CountPlaces(store_, contents_, &counts), 0);
    return counts.at(code);
  }

  const TempDir folder_;
  const std::string path_ = folder_ / "index";
  Database store_;
  kestan::Contents contents_;
};

TEST(PlaceTest, ItHoldsTheHighestCodePositionAndWord) {
  const kestan::Place place = MakePlace(65535, 65534, 0xfffffffd);
  EXPECT_EQ(kestan::CodeOf(place), 65535);
  EXPECT_EQ(kestan::PositionOf(place), 65534);
  EXPECT_EQ(kestan::WordOf(place), 0xfffffffdU);
}

TEST(PlaceTest, PlacesAreOrderedByDocumentThenPositionThenWord) {
  EXPECT_LT(MakePlace(1, 65535, 9), MakePlace(2, 1, 0));
  EXPECT_LT(MakePlace(1, 1, 9), MakePlace(1, 2, 0));
  EXPECT_LT(MakePlace(1, 1, 8), MakePlace(1, 1, 9));
}

TEST_F(PlacesTest, PlacesOfTheWantedDocumentsComeInOrder) {
  Open({{"cat", Units({1, 2, 3, 5, 2, 1, 1})}, {"dog", Units({3, 1, 1, 1, 1, 4})}});
  EXPECT_EQ(Found({1}), Places({MakePlace(1, 3, 0), MakePlace(1, 4, 1), MakePlace(1, 5, 0)}));
  EXPECT_EQ(Found({2, 3}), Places({MakePlace(2, 1, 0), MakePlace(3, 1, 1)}));
  EXPECT_EQ(Found({4}), Places());
}

TEST_F(PlacesTest, EachPositionIsCounted) {
  Open({{"cat", Units({1, 2, 3, 5, 2, 1, 1})}, {"dog", Units({65535, 1, 1, 1, 1, 4})}});
  EXPECT_EQ(CountOf(1), 3U);
  EXPECT_EQ(CountOf(2), 1U);
  EXPECT_EQ(CountOf(3), 0U);
  EXPECT_EQ(CountOf(65535), 1U);
}

TEST_F(PlacesTest, WithoutPositionsEachPostingIsAPlaceAtPositionZero) {
  Open({{"g-opts", Units({1, 0})}, {"cat", Units({1, 2})}, {"dog", Units({2})}});
  EXPECT_EQ(Found({2}), Places({MakePlace(2, 0, 0), MakePlace(2, 0, 1)}));
  EXPECT_EQ(CountOf(2), 2U);
}

TEST_F(PlacesTest, OfAWordThatNoShrinkPurgesTheLastPostingOfACodeCounts) {
  Open({{"a", Units({1, 2, 3, 4, 2, 1, 1, 1, 1, 9})}});
  EXPECT_EQ(Found({1, 2}), Places({MakePlace(1, 9, 0), MakePlace(2, 1, 0)}));
  EXPECT_EQ(CountOf(1), 1U);
}

TEST_F(PlacesTest, OfAnyOtherWordAllPostingsCount) {
  Open({{"cat", Units({1, 1, 3, 1, 1, 9})}});
  EXPECT_EQ(Found({1}), Places({MakePlace(1, 3, 0), MakePlace(1, 9, 0)}));
}

TEST_F(PlacesTest, OfACutPostingThePositionsThatAreThereCount) {
  Open({{"cat", Units({1, 3, 4, 5})}, {"dog", Units({1})}});
  EXPECT_EQ(Found({1}), Places({MakePlace(1, 4, 0), MakePlace(1, 5, 0)}));
  EXPECT_EQ(CountOf(1), 2U);
}

}  // namespace
}  // namespace kestan_tests
