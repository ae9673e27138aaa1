// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the tests of a program. A test that leaves a descriptor open fails.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace {

std::size_t CountDescriptors() {
  const std::filesystem::directory_iterator open("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(open), end(open)));
}

class DescriptorWatch : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override { before_ = CountDescriptors(); }
  void OnTestEnd(const testing::TestInfo&) override {
    const std::size_t after = CountDescriptors();
    if (after > before_) ADD_FAILURE() << after - before_ << " descriptors are still open";
  }

  std::size_t before_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // Listeners hear the end of a test in reverse order: this one, being last, can still fail it.
  testing::UnitTest::GetInstance()->listeners().Append(new DescriptorWatch);
  return RUN_ALL_TESTS();
}
