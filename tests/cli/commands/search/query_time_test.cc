// What long queries cost, by the time of the processor.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <functional>
#include <limits>
#include <string>

#include "search/query/evaluation/evaluator.h"
#include "search/query/query_parser.h"
#include "tests/support/index_test.h"

namespace kestan_cli {
namespace {

using kestan::search::Evaluator;
using kestan::search::ParseQuery;

// The words "aaa" to "bmm", each of three letters.
std::string WordOf(std::size_t number) {
  return {static_cast<char>('a' + number / 676), static_cast<char>('a' + number / 26 % 26),
          static_cast<char>('a' + number % 26)};
}

class QueryTimeTest : public kestan_tests::IndexTest {
 protected:
  using Operand = std::function<std::string(std::size_t number)>;

  void SetUp() override {
    kestan_tests::IndexTest::SetUp();
    std::string text;
    for (std::size_t i = 0; i < 1000; ++i) text += WordOf(i) + " ";
    for (std::size_t i = 0; i < 400; ++i) {
      engine_.AddDocumentWords(std::to_string(i).c_str(), text.c_str());
    }
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
      Evaluator evaluator(engine_);
      engine_.QueryResults(evaluator.Evaluate(*query, nullptr).id());
      best = std::min(best, std::clock() - start);
    }
    return best;
  }

  // How many times the time of 20 operands 1,000 take.
  double Growth(const std::string& between, const Operand& operand) {
    const auto few = static_cast<double>(std::max<std::clock_t>(Time(20, between, operand), 100));
    return static_cast<double>(Time(1000, between, operand)) / few;
  }
};

// Fifty times as many operands, united in twice as many rounds. From left to right it was 200 times
// the time.
constexpr double kMaxGrowth = 110;

TEST_F(QueryTimeTest, EqualOperandsTakeTheTimeOfOne) {
  EXPECT_LT(Growth(" OR ", [](std::size_t) { return "aaa"; }), 10);
  EXPECT_LT(Growth(" ", [](std::size_t) { return "aaa"; }), 10);
  EXPECT_LT(Growth(" OR ", [](std::size_t) { return "a*"; }), 10);
}

TEST_F(QueryTimeTest, DifferentOperandsGrowWithTheirNumber) {
  for (const char* between : {" OR ", " ", " NEAR/5 ", " -", " OR NOT "}) {
    EXPECT_LT(Growth(between, WordOf), kMaxGrowth) << between;
  }
}

TEST_F(QueryTimeTest, ExpansionsGrowWithTheirNumber) {
  const auto prefix = [](std::size_t i) { return WordOf(i) + "*"; };
  EXPECT_LT(Growth(" OR ", prefix), kMaxGrowth);
  EXPECT_LT(Growth(" NEAR/9 ", [](std::size_t) { return "bm*"; }), kMaxGrowth);
}

}  // namespace
}  // namespace kestan_cli
