// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/matching/operators/common.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <vector>

namespace kestan::search {
namespace {

using Codes = std::vector<Code>;

// Looks for each code by itself.
std::vector<Place> PlainPlacesOf(const Codes& codes, const Codes& list) {
  std::vector<Place> places;
  for (const Code code : codes) {
    const auto found = std::lower_bound(list.begin(), list.end(), code);
    const bool is_there = found != list.end() && *found == code;
    places.push_back(is_there ? static_cast<Place>(found - list.begin()) : kNoPlace);
  }
  return places;
}

// Each `step`th code from `first` to `last`.
Codes Every(std::size_t step, std::size_t first, std::size_t last) {
  Codes codes;
  for (std::size_t code = first; code <= last; code += step) {
    codes.push_back(static_cast<Code>(code));
  }
  return codes;
}

// About `count` codes, from all parts of a segment or from one.
rc::Gen<Codes> AnyCodes() {
  return rc::gen::exec([] {
    const int last = *rc::gen::element(300, 5000, 65535);
    const int count = *rc::gen::element(0, 1, 30, 700, 20000);
    const int first = *rc::gen::element(1, last / 2, last);
    std::minstd_rand random(static_cast<unsigned>(*rc::gen::inRange(1, 1000000)));
    std::uniform_int_distribution<int> any(first, last);
    Codes codes;
    for (int i = 0; i < count; ++i) codes.push_back(static_cast<Code>(any(random)));
    std::sort(codes.begin(), codes.end());
    codes.erase(std::unique(codes.begin(), codes.end()), codes.end());
    return codes;
  });
}

TEST(PlacesOfTest, CodesThatAreNotThereHaveNoPlace) {
  EXPECT_EQ(PlacesOf({1, 4, 9}, {2, 4, 5, 9}), (std::vector<Place>{kNoPlace, 1, 3}));
  EXPECT_EQ(PlacesOf({1, 4}, {}), (std::vector<Place>{kNoPlace, kNoPlace}));
  EXPECT_EQ(PlacesOf({}, {1, 4}), std::vector<Place>{});
}

TEST(PlacesOfTest, AllCodesHaveTheirPlaces) {
  const Codes all = Every(1, 1, 65535);
  const std::vector<Place> places = PlacesOf(all, Codes(all));
  EXPECT_EQ(places, PlainPlacesOf(all, all));
  EXPECT_EQ(places.back(), 65534);
  EXPECT_EQ(PlacesOf(all, all), places);
}

TEST(PlacesOfTest, EndsOfTablesAreFound) {
  const std::vector<std::size_t> steps = {1, 2, 3, 7, 50, 99, 100, 101, 102, 4095, 4096, 4097};
  for (const std::size_t step : steps) {
    for (const std::size_t first : {1u, 4095u, 4096u, 65535u}) {
      const Codes codes = Every(step, first, 65535);
      for (const Codes& list : {Every(1, 1, 65535), Every(2, 2, 65535), Every(3, 1, 5000)}) {
        EXPECT_EQ(PlacesOf(codes, list), PlainPlacesOf(codes, list)) << step;
        EXPECT_EQ(PlacesOf(list, codes), PlainPlacesOf(list, codes)) << step;
      }
    }
  }
}

RC_GTEST_PROP(PlacesOfTest, PlacesAreThoseOfLookingForEachCode, ()) {
  const Codes codes = *AnyCodes();
  const Codes list = *AnyCodes();
  RC_ASSERT(PlacesOf(codes, list) == PlainPlacesOf(codes, list));
}

}  // namespace
}  // namespace kestan::search
