// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/matching/operators/matches.h"

#include <kestan/index_builder.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

namespace kestan::search {
namespace {

using List = std::vector<Position>;

List Read(const Occurrences& found, std::size_t index) {
  PositionReader reader;
  const Positions positions = reader.Of(found, index);
  return {positions.begin(), positions.end()};
}

// One posting as a posting record has it, `bytes_behind` before its end.
Occurrences InRecord(const List& positions, std::size_t bytes_behind = 0) {
  auto record = std::make_shared<std::string>();
  AppendPosting(7, Positions{positions.data(), positions.size()}, record.get());
  record->append(bytes_behind, '\1');
  record->shrink_to_fit();
  Occurrences found;
  found.codes = {7};
  found.counts = {static_cast<std::uint32_t>(positions.size())};
  found.starts = {4};
  found.record = Bytes(std::shared_ptr<const std::string>(std::move(record)));
  return found;
}

TEST(PositionReaderTest, PositionsOfATermAreReadFromItsRecord) {
  EXPECT_EQ(Read(InRecord({1, 300, 65535}), 0), (List{1, 300, 65535}));
}

TEST(PositionReaderTest, PositionsPastTheWrapAreSortedIn) {
  EXPECT_EQ(Read(InRecord({5, 65535, 5, 9, 2}), 0), (List{2, 5, 5, 9, 65535}));
}

TEST(PositionReaderTest, RepeatsOfTheLastPositionFillUpEachBlock) {
  PositionReader reader;
  for (std::size_t count = 1; count < 40; ++count) {
    List expected(count);
    std::iota(expected.begin(), expected.end(), Position{3});
    for (std::size_t bytes_behind = 0; bytes_behind < 40; bytes_behind += 2) {
      const Occurrences found = InRecord(expected, bytes_behind);
      const PaddedPositions read = reader.Of(found, 0);
      ASSERT_EQ(read.padded(), (count + 7) / 8 * 8);
      EXPECT_EQ(List(read.begin(), read.end()), expected);
      const List padding(read.end(), read.first + read.padded());
      EXPECT_EQ(padding, List(read.padded() - count, expected.back())) << bytes_behind;
    }
  }
}

TEST(PositionReaderTest, PositionsAreSortedWhereverTheyFall) {
  for (std::size_t count = 2; count < 40; ++count) {
    List sorted(count);
    std::iota(sorted.begin(), sorted.end(), Position{3});
    for (std::size_t start = 1; start < count; ++start) {
      List rotated = sorted;
      std::rotate(rotated.begin(), rotated.begin() + static_cast<std::ptrdiff_t>(start),
                  rotated.end());
      EXPECT_EQ(Read(InRecord(rotated, 64), 0), sorted) << start;
    }
  }
}

TEST(FirstPositionsTest, TheyAreReadWhereverPositionsAre) {
  EXPECT_EQ(FirstPositions(InRecord({4, 300, 65535}))[0], 4);
  Occurrences found;
  const List one = {0, 9};
  const List two = {300};
  found.Append(2, {one.data(), one.size()});
  found.Append(5, {two.data(), two.size()});
  EXPECT_EQ(FirstPositions(found)[0], 0);
  EXPECT_EQ(FirstPositions(found)[1], 300);
}

TEST(PositionReaderTest, AppendedPositionsAreThoseOfTheirDocument) {
  const List first = {3};
  const List second = {1, 2};
  Occurrences found;
  found.Append(1, {first.data(), first.size()});
  found.Append(9, {second.data(), second.size()});
  EXPECT_EQ(found.codes, (std::vector<Code>{1, 9}));
  EXPECT_EQ(found.counts, (std::vector<std::uint32_t>{1, 2}));
  EXPECT_EQ(Read(found, 0), first);
  EXPECT_EQ(Read(found, 1), second);
}

}  // namespace
}  // namespace kestan::search
