// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/progress.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestan_cli {
namespace {

using std::chrono::milliseconds;

ProgressState Half() { return {50, 100, 0, 0, 10}; }

TEST(ProgressBarTest, ShowsShareRateAndTimeLeft) {
  EXPECT_EQ(ProgressBar(Half(), 60),
            "[###########            ]  50%  50/100 files, 5/s, 0:10 left");
}

TEST(ProgressBarTest, FitsEveryWidth) {
  for (std::size_t columns = 0; columns < 200; ++columns) {
    EXPECT_LE(ProgressBar(Half(), columns).size(), columns);
  }
}

TEST(ProgressBarTest, NarrowTerminalGetsTextOnly) {
  EXPECT_EQ(ProgressBar(Half(), 20), " 50%  50/100 files, ");
}

TEST(ProgressBarTest, ShareIsOfBytes) {
  EXPECT_EQ(ProgressWords({1, 3, 999, 3997, 10}), "1 of 3 files, 0:30 left");
}

TEST(ProgressBarTest, LongTimesHaveHours) {
  EXPECT_EQ(ProgressWords({1, 1001, 0, 0, 7.21}), "1 of 1001 files, 2:00:10 left");
}

TEST(ProgressBarTest, FirstSecondHasNoTimeLeft) {
  EXPECT_EQ(ProgressWords({50, 100, 0, 0, 0.5}), "50 of 100 files");
}

TEST(ProgressBarTest, FilesThatGrewDoNotExceedOneHundredPercent) {
  EXPECT_EQ(ProgressBar({1, 1, 500, 100, 0}, 30).find("100%"), 15u);
}

class ProgressTest : public testing::Test {
 protected:
  // Lets a run of 100 files pass, with `pause` before the end of each.
  void Run(ProgressStyle style, milliseconds pause) {
    Progress progress(
        style, 100, 0, [this] { return now_; },
        [this](const std::string& text) { written_.push_back(text); });
    for (int i = 0; i < 100; ++i) {
      now_ += pause;
      progress.Advance(0);
    }
  }

  Progress::Clock::time_point now_;
  std::vector<std::string> written_;
};

TEST_F(ProgressTest, BarIsDrawnAtMostTenTimesASecondAndErased) {
  Run(ProgressStyle::kBar, milliseconds(10));
  ASSERT_EQ(written_.size(), 11u);
  EXPECT_EQ(written_.front().front(), '\r');
  EXPECT_EQ(written_.back(), "\r\x1b[K");
}

TEST_F(ProgressTest, ShortRunDrawsNothing) {
  Run(ProgressStyle::kBar, milliseconds(0));
  EXPECT_TRUE(written_.empty());
}

TEST_F(ProgressTest, LinesComeEveryTenSeconds) {
  Run(ProgressStyle::kLines, milliseconds(250));
  ASSERT_EQ(written_.size(), 2u);
  EXPECT_EQ(written_[0], "kestan: 40 of 100 files, 0:15 left\n");
}

TEST_F(ProgressTest, NoLineFollowsTheLastFile) {
  Run(ProgressStyle::kLines, milliseconds(100));
  EXPECT_TRUE(written_.empty());
}

TEST_F(ProgressTest, StepIsShownInMegabytesAndTimedFromItsOwnBeginning) {
  Progress progress(
      ProgressStyle::kLines, 0, 0, [this] { return now_; },
      [this](const std::string& text) { written_.push_back(text); });
  now_ += std::chrono::seconds(60);
  progress.Reach("writing", 0, 100'000'000);
  now_ += std::chrono::seconds(10);
  progress.Reach("writing", 20'000'000, 100'000'000);
  progress.Reach("merging", 0, 50'000'000);
  now_ += std::chrono::seconds(10);
  progress.Reach("merging", 25'000'000, 50'000'000);
  now_ += std::chrono::seconds(10);
  progress.Reach("merging", 50'000'000, 50'000'000);
  EXPECT_EQ(written_, (std::vector<std::string>{"kestan: writing 20 of 100 MB, 0:40 left\n",
                                                "kestan: merging 25 of 50 MB, 0:10 left\n"}));
}

TEST_F(ProgressTest, QuietRunWritesNothing) {
  Run(ProgressStyle::kNone, milliseconds(60000));
  EXPECT_TRUE(written_.empty());
}

}  // namespace
}  // namespace kestan_cli
