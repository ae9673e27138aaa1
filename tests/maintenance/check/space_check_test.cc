// SPDX-License-Identifier: GPL-3.0-or-later
// Everything in a gdbm file has bytes of its own, however few pieces are looked at together.
#include <kestan/maintenance/check/space_check.h>

#include <cstring>
#include <string>

#include "tests/maintenance/index_files.h"
#include "tests/maintenance/maintenance_test.h"

namespace kestan_tests {
namespace {

namespace gdbm = kestan::gdbm;

Lines LinesOfFile(const std::string& bytes, std::size_t most) {
  Lines lines;
  const kestan::TakeLine take = [&](std::string_view line) { lines.emplace(line); };
  const kestan::TakeFinding take_finding = kestan::AsLines(take);
  kestan::Findings findings(take_finding);
  const gdbm::Bytes file(bytes);
  kestan::SpaceCheck(file, &findings, most).Run();
  return lines;
}

class SpaceCheckTest : public testing::Test {
 protected:
  void SetUp() override {
    const TempDir folder;
    kestan_maintenance::MakeIndex(folder / "index", 100, 3);
    bytes_ = kestan_maintenance::ReadFile(folder / "index");
  }

  // Changes the element of the first record by `change`.
  template <typename Change>
  void ChangeElement(Change change) {
    const std::size_t at = kestan_maintenance::MapOf(bytes_).records.front().element;
    gdbm::Element element{};
    std::memcpy(&element, &bytes_[at], sizeof element);
    change(&element);
    std::memcpy(&bytes_[at], &element, sizeof element);
  }

  // In one part and in many.
  void Expect(const Lines& lines) {
    for (const std::size_t most : {kestan::SpaceCheck::kPiecesAtOnce, std::size_t{100}}) {
      EXPECT_EQ(LinesOfFile(bytes_, most), lines) << most;
    }
  }

  std::string bytes_;
};

TEST_F(SpaceCheckTest, AGoodFileHasNoFaults) { Expect({}); }

TEST_F(SpaceCheckTest, WhatIsNoFileOfGdbmIsNotJudged) {
  bytes_[0] = 'x';
  Expect({});
}

TEST_F(SpaceCheckTest, ARecordThatReachesIntoOthers) {
  ChangeElement([](gdbm::Element* element) { element->value_bytes += 2000; });
  for (const std::string& line : LinesOfFile(bytes_, 100)) {
    EXPECT_EQ(line.rfind("index file: ", 0), 0U) << line;
  }
  EXPECT_FALSE(LinesOfFile(bytes_, 100).empty());
  EXPECT_EQ(LinesOfFile(bytes_, 100), LinesOfFile(bytes_, 1000000));
}

TEST_F(SpaceCheckTest, ARecordThatReachesPastTheEnd) {
  ChangeElement([](gdbm::Element* element) { element->value_bytes = 0x7fffffff; });
  Expect({"index file: records and free space that reach past the end of the file: 1"});
}

}  // namespace
}  // namespace kestan_tests
