// SPDX-License-Identifier: GPL-3.0-or-later
// A dump that is not what was written is noticed, wherever it differs.
#include <fstream>
#include <string>
#include <vector>

#include "tests/maintenance/dump/dump_test.h"

namespace kestan_tests {
namespace {

using namespace std::string_literals;

// As small as an index can be that has each kind of line.
const Records kRecords = {{"", "\0\xff"s},
                          {"d-a.txt", "\x01\x02\x03\x04\x01\0\0\0"s},
                          {"end 1", "\\"},
                          {"word", Units({1, 1, 1})}};

class DumpDamageTest : public DumpTest {
 protected:
  // Says why `text`, whose last line is right, is refused.
  std::string Why(const std::string& records, unsigned count) {
    return Load(WholeDump(records, count));
  }
};

TEST_F(DumpDamageTest, EveryTruncationIsRefused) {
  const std::string text = DumpOf(kRecords);
  ASSERT_EQ(Load(text.substr(0, text.size() - 1)), "");  // only a line feed after all that counts
  for (std::size_t bytes = 0; bytes + 1 < text.size(); ++bytes) {
    EXPECT_EQ(Load(text.substr(0, bytes)).substr(0, 5), "line ") << bytes;
  }
}

TEST_F(DumpDamageTest, EveryChangedBitIsRefused) {
  const std::string text = DumpOf(kRecords);
  for (std::size_t bit = 0; bit < text.size() * 8; ++bit) {
    std::string changed = text;
    changed[bit / 8] = static_cast<char>(changed[bit / 8] ^ 1 << bit % 8);
    EXPECT_EQ(Load(changed).substr(0, 5), "line ") << "bit " << bit;
  }
}

TEST_F(DumpDamageTest, EveryByteThatMeansSomethingIsRefusedInThePlaceOfAnother) {
  const std::string text = DumpOf(kRecords);
  for (std::size_t i = 0; i < text.size(); ++i) {
    for (const char byte : "\n\t\\x0a \xff"s + '\0') {
      std::string changed = text;
      changed[i] = byte;
      if (changed == text) continue;
      EXPECT_EQ(Load(changed).substr(0, 5), "line ") << i << " " << byte;
    }
  }
}

TEST_F(DumpDamageTest, ALostAMovedAndADoubledLineAreRefused) {
  std::vector<std::string> lines;
  std::string_view line;
  const std::string text = DumpOf(kRecords);
  for (LinesOfText next(text); next(&line);) lines.push_back(std::string(line) + "\n");
  const auto load = [&](const std::vector<std::string>& changed) {
    std::string all;
    for (const std::string& each : changed) all += each;
    return Load(all).substr(0, 5);
  };
  for (std::size_t i = 0; i < lines.size(); ++i) {
    auto changed = lines;
    changed.erase(changed.begin() + static_cast<std::ptrdiff_t>(i));
    EXPECT_EQ(load(changed), "line ") << i;
    changed = lines;
    changed.insert(changed.begin() + static_cast<std::ptrdiff_t>(i), lines[i]);
    EXPECT_EQ(load(changed), "line ") << i;
    changed = lines;
    std::swap(changed[i], changed[(i + 1) % lines.size()]);
    EXPECT_EQ(load(changed), "line ") << i;
  }
}

TEST_F(DumpDamageTest, AnEmptyTextHasNoLastLine) {
  EXPECT_EQ(Load(""), "line 1: the dump ends here, without its last line");
}

TEST_F(DumpDamageTest, OtherTextsAreNoDumps) {
  EXPECT_EQ(Load("\n"), "line 1: not a dump of an index");
  EXPECT_EQ(Load("#!/bin/sh\n"), "line 1: not a dump of an index");
}

TEST_F(DumpDamageTest, AnotherVersionIsNotRead) {
  EXPECT_EQ(Load("kestan-dump 2\nend 0 0\n"), "line 1: a dump in a form that is not known here");
}

TEST_F(DumpDamageTest, TheLastLineMustAgree) {
  EXPECT_EQ(Load("kestan-dump 1\na\tb\nend 1 0000000000000000\n"),
            "line 3: number of records or checksum differ from what was read");
  EXPECT_EQ(Why("a\tb\n", 2), "line 3: number of records or checksum differ from what was read");
  EXPECT_EQ(Why("a\tb\n", 1), "");
}

TEST_F(DumpDamageTest, NothingFollowsTheLastLine) {
  EXPECT_EQ(Load(WholeDump("a\tb\n", 1) + "\n"), "line 4: something follows the last line");
}

TEST_F(DumpDamageTest, RecordsHaveOneTab) {
  EXPECT_EQ(Why("ab\n", 1), "line 2: neither a record nor the last line");
  EXPECT_EQ(Why("\n", 1), "line 2: neither a record nor the last line");
  EXPECT_EQ(Why("a\tb\tc\n", 1), "line 2: more than one tab");
  EXPECT_EQ(Why("a\\\nb\n", 1), "line 3: a record without a tab");
  EXPECT_EQ(Why("a\\\nb\tc\n", 1), "");
}

TEST_F(DumpDamageTest, EscapesHaveOneForm) {
  EXPECT_EQ(Why("a\t\\n\n", 1), "line 2: an escape is not \\xHH");
  EXPECT_EQ(Why("a\t\\x0\n", 1), "line 2: an escape is not \\xHH");
  EXPECT_EQ(Why("a\t\\x0A\n", 1), "line 2: an escape is not \\xHH");
  EXPECT_EQ(Why("a\t\\x41\n", 1), "line 2: an escape for a byte that needs none");
  EXPECT_EQ(Why("a\t\x80\n", 1), "line 2: a byte that should have been escaped");
  EXPECT_EQ(Why("a\tb\r\n", 1), "line 2: a byte that should have been escaped");
}

TEST_F(DumpDamageTest, KeysAscend) {
  EXPECT_EQ(Why("b\t1\na\t2\n", 2), "line 3: the keys are not in order");
  EXPECT_EQ(Why("a\t1\na\t2\n", 2), "line 3: the keys are not in order");
  EXPECT_EQ(Why("\t1\n\t2\n", 2), "line 3: the keys are not in order");
}

TEST_F(DumpDamageTest, LinesHaveALimit) {
  const std::string longest(kestan::kMaxDumpLineBytes - 2, 'v');
  EXPECT_EQ(Why("k\t" + longest + "\n", 1), "");
  EXPECT_EQ(Why("k\t" + longest + "v\n", 1), "line 2: longer than any line of a dump");
}

}  // namespace
}  // namespace kestan_tests
