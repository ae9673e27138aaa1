// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/ranking/filtering.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/search/matching/plain_segments.h"

namespace kestan::search {
namespace {

using kestan_tests::Plain;
using Codes = std::vector<Code>;

class FilterTest : public testing::Test {
 protected:
  FilterTest() { segments_.Add({Plain("a", "x"), Plain("b", "x"), Plain("c", "x")}); }

  Codes Filtered(Codes codes, const DocumentFilter& filter) {
    EXPECT_TRUE(Filter(filter, *segments_.snapshot().segments[0], 7, &codes).ok());
    return codes;
  }

  kestan_tests::PlainSegments segments_;
};

TEST_F(FilterTest, KeepsTheOrderOfWhatPasses) {
  const auto is_not_b = [](const FilteredDocument& document) { return document.name() != "b"; };
  EXPECT_EQ(Filtered({1, 2, 3}, is_not_b), (Codes{1, 3}));
  EXPECT_EQ(Filtered({2}, is_not_b), Codes());
  EXPECT_EQ(Filtered({}, is_not_b), Codes());
}

TEST_F(FilterTest, LooksAtEachDocumentOnceInOrder) {
  std::string names;
  Filtered({1, 3}, [&names](const FilteredDocument& document) {
    names.append(document.name());
    EXPECT_EQ(document.index(), 7u);
    EXPECT_EQ(document.title() + document.summary() + document.host_data(), "");
    return true;
  });
  EXPECT_EQ(names, "ac");
}

}  // namespace
}  // namespace kestan::search
