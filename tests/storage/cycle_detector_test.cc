// SPDX-License-Identifier: GPL-3.0-or-later
// When a walk is known to have met a key before.
#include <kestan/storage/cycle_detector.h>

#include <gtest/gtest.h>

#include <string>

namespace kestan_tests {
namespace {

bool HasMet(kestan::CycleDetector* detector, int number) {
  const std::string key = "key " + std::to_string(number);
  return detector->HasMet(DBDatum(key.data(), static_cast<std::uint32_t>(key.size())));
}

TEST(CycleDetectorTest, AWalkWithoutRepeatedKeysHasNoCycle) {
  kestan::CycleDetector detector;
  for (int number = 0; number < 1000; ++number) EXPECT_FALSE(HasMet(&detector, number));
}

TEST(CycleDetectorTest, ACycleIsNoticedWithinThreeRounds) {
  for (int keys = 1; keys < 50; ++keys) {
    kestan::CycleDetector detector;
    int steps = 0;
    while (!HasMet(&detector, steps % keys)) ASSERT_LT(++steps, 3 * keys) << keys;
  }
}

TEST(CycleDetectorTest, ACycleAfterOtherKeysIsNoticedToo) {
  kestan::CycleDetector detector;
  for (int number = 0; number < 100; ++number) ASSERT_FALSE(HasMet(&detector, number));
  int steps = 0;
  while (!HasMet(&detector, 100 + steps % 7)) ASSERT_LT(++steps, 200);
}

TEST(CycleDetectorTest, ARestartForgetsAllKeys) {
  kestan::CycleDetector detector;
  EXPECT_FALSE(HasMet(&detector, 1));
  detector.Restart();
  EXPECT_FALSE(HasMet(&detector, 1));
  EXPECT_TRUE(HasMet(&detector, 1));
}

}  // namespace
}  // namespace kestan_tests
