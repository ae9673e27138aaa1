#include <gtest/gtest.h>

#include <vector>

#include "tests/search/matching/operators/occurrences.h"
#include "tests/search/matching/plain_segments.h"

namespace kestan::search {
namespace {

using kestan_tests::At;
using kestan_tests::Plain;
using kestan_tests::PlainSegments;
using Codes = std::vector<Code>;

TEST(SubtractTest, LivingDocumentsWithoutTheOperandAreFoundAnywhere) {
  PlainSegments segments;
  auto documents = std::vector{Plain("a", "x"), Plain("b", "x"), Plain("c", "x"), Plain("d", "x")};
  documents[2].is_removed = true;
  const auto segment = segments.Add(documents);
  const Found operand = At({{1, {1}}});
  EXPECT_EQ(Subtract(*segment, *operand, Need::kCodes).codes, (Codes{2, 4}));
  EXPECT_EQ(Subtract(*segment, *operand, Need::kCounts).counts, (std::vector<std::uint32_t>{1, 1}));
  EXPECT_EQ(kestan_tests::PlacesIn(Subtract(*segment, *operand, Need::kPositions)),
            (kestan_tests::Places{{2, {0}}, {4, {0}}}));
  EXPECT_EQ(Subtract(*segment, *At({}), Need::kCodes).codes, (Codes{1, 2, 4}));
}

}  // namespace
}  // namespace kestan::search
