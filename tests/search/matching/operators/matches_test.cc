#include "search/matching/operators/matches.h"

#include <kestan/index_builder.h>

#include <gtest/gtest.h>

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

// One posting as a posting record has it.
Occurrences InRecord(const List& positions) {
  auto record = std::make_shared<std::string>();
  AppendPosting(7, Positions{positions.data(), positions.size()}, record.get());
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
