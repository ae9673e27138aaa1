// SPDX-License-Identifier: GPL-3.0-or-later
// What long queries cost, by the time of the processor.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "search/matching/matcher.h"
#include "search/query/query_parser.h"
#include "tests/search/matching/plain_segments.h"

namespace kestan::search {
namespace {

// The words "aaa" to "bmm", each of three letters.
std::string WordOf(std::size_t number) {
  return {static_cast<char>('a' + number / 676), static_cast<char>('a' + number / 26 % 26),
          static_cast<char>('a' + number % 26)};
}

class MatcherTimeTest : public testing::Test {
 protected:
  using Operand = std::function<std::string(std::size_t number)>;

  void SetUp() override {
    kestan_tests::DocumentOfWords document;
    for (std::size_t i = 0; i < 1000; ++i) document.words.push_back(WordOf(i));
    std::vector<kestan_tests::DocumentOfWords> documents;
    for (std::size_t i = 0; i < 400; ++i) {
      document.name = std::to_string(i);
      documents.push_back(document);
    }
    segment_ = segments_.Add(documents);
  }

  // How long a query of `count` operands, with `between` them, takes: the best of some
  // trials.
  std::clock_t Time(std::size_t count, const std::string& between, const Operand& operand) {
    std::string text = operand(0);
    for (std::size_t i = 1; i < count; ++i) text += between + operand(i);
    const auto query = ParseQuery(text);
    std::clock_t best = std::numeric_limits<std::clock_t>::max();
    for (int trial = 0; trial < 3; ++trial) {
      const std::clock_t start = std::clock();
      Matcher(*segment_).Find(*query, Need::kCodes);
      best = std::min(best, std::clock() - start);
    }
    return best;
  }

  // How many times the time of 20 operands 1,000 take.
  double Growth(const std::string& between, const Operand& operand) {
    const auto few = static_cast<double>(std::max<std::clock_t>(Time(20, between, operand), 100));
    return static_cast<double>(Time(1000, between, operand)) / few;
  }

  kestan_tests::PlainSegments segments_;
  std::shared_ptr<const Segment> segment_;
};

// Fifty times as many operands, with room for what else a run has to do.
constexpr double kMaxGrowth = 110;

TEST_F(MatcherTimeTest, EqualOperandsTakeTheTimeOfOne) {
  EXPECT_LT(Growth(" OR ", [](std::size_t) { return "aaa"; }), 10);
  EXPECT_LT(Growth(" ", [](std::size_t) { return "aaa"; }), 10);
  EXPECT_LT(Growth(" OR ", [](std::size_t) { return "a*"; }), 10);
}

TEST_F(MatcherTimeTest, DifferentOperandsGrowWithTheirNumber) {
  for (const char* between : {" OR ", " ", " NEAR/5 ", " -", " OR NOT "}) {
    EXPECT_LT(Growth(between, WordOf), kMaxGrowth) << between;
  }
}

TEST_F(MatcherTimeTest, ExpansionsGrowWithTheirNumber) {
  const auto prefix = [](std::size_t i) { return WordOf(i) + "*"; };
  EXPECT_LT(Growth(" OR ", prefix), kMaxGrowth);
  EXPECT_LT(Growth(" NEAR/9 ", [](std::size_t) { return "bm*"; }), kMaxGrowth);
}

}  // namespace
}  // namespace kestan::search
