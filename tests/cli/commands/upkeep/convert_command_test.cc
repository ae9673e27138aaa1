// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <string>

#include "tests/cli/commands/upkeep/upkeep_test.h"

namespace kestan_tests {
namespace {

class ConvertCommandTest : public UpkeepTest {};

TEST_F(ConvertCommandTest, FileBecomesAFolder) {
  const std::string before = BytesOfFile(Path("one.index"));
  EXPECT_EQ(Run({"convert", "one.index", "new.index"}), Success("converted 2 documents\n"));
  EXPECT_EQ(CountMatches("new.index", "cat"), 2u);
  EXPECT_EQ(Run({"check", "new.index"}), Success("0 faults, 0 notes\n"));
  EXPECT_EQ(BytesOfFile(Path("one.index")), before);
  EXPECT_EQ(Run({"convert", "one.index", "-q", "quiet.index"}), Success(""));
}

TEST_F(ConvertCommandTest, WhatIsLeftOutIsNamed) {
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("one.index").c_str(), 1), 0);
    engine.AddDocumentWords("c", "d-day e-mail");
    engine.DBPutTitle("nobody", "Title");
    engine.CloseIndex();
  }
  EXPECT_EQ(Run({"convert", "one.index", "new.index"}),
            Success("converted 3 documents\n"
                    "left out: 2 words with a hyphen as the second letter; index the documents "
                    "again for them\n"
                    "left out: 1 text of no document\n"));
  EXPECT_EQ(Run({"convert", "one.index", "other.index", "--json"}),
            Success("{\"schema\":1,\"documents\":3,\"words_left_out\":2,\"texts_left_out\":1}\n"));
}

TEST_F(ConvertCommandTest, WhatIsThereStays) {
  EXPECT_EQ(Run({"convert", "one.index", "my.index"}),
            Failure("cannot make 'my.index': there is something already; choose another name"));
  EXPECT_EQ(CountDocuments("my.index"), 2u);
}

TEST_F(ConvertCommandTest, OnlyIndexFilesAreConverted) {
  Write("text", "no index");
  const Outcome text = Run({"convert", "text", "new.index"});
  EXPECT_EQ(text.status, 2);
  EXPECT_EQ(text.err.rfind("kestan: index 'text': ", 0), 0u) << text;
  EXPECT_EQ(Run({"convert", "my.index", "new.index"}),
            Failure("cannot open index 'my.index': it is a folder already"));
  EXPECT_EQ(Run({"convert", "nowhere", "new.index"}),
            Failure("cannot open index 'nowhere': no such file or folder; kestan index makes one"));
  EXPECT_EQ(CountFiles("new.index"), 0);
}

TEST_F(ConvertCommandTest, FullDiskIsAnErrorAboutTheFolder) {
  const Outcome full = Run({"convert", "one.index", "new.index"}, FileSizeLimit(100));
  EXPECT_EQ(full, Failure("cannot make 'new.index': File too large"));
  EXPECT_EQ(CountFiles("new.index"), 0);
}

}  // namespace
}  // namespace kestan_tests
