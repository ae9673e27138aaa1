// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <string>

#include "tests/cli/commands/upkeep/upkeep_test.h"

namespace kestan_tests {
namespace {

class RepairCommandTest : public UpkeepTest {};

TEST_F(RepairCommandTest, SavesWhatADamagedIndexHolds) {
  std::string bytes = BytesOfFile(Path("one.index"));
  bytes.replace(0, 400, 400, '\xff');  // the header
  Write("damaged.index", bytes);
  EXPECT_EQ(CountDocuments("damaged.index"), UINT64_MAX);
  const Outcome outcome = Run({"repair", "damaged.index", "new.index"});
  EXPECT_EQ(outcome.status, 0) << outcome;
  EXPECT_NE(outcome.out.find("saved 2 documents, 0 with words missing, 0 half-written, 0 lost\n"),
            std::string::npos)
      << outcome;
  EXPECT_EQ(CountMatches("new.index", "dog"), 1u);
  EXPECT_EQ(Run({"check", "new.index"}).status, 0);
  EXPECT_EQ(BytesOfFile(Path("damaged.index")), bytes);
}

TEST_F(RepairCommandTest, DoesNotOverwrite) {
  EXPECT_EQ(Run({"repair", "one.index", "my.index"}),
            Failure("cannot make 'my.index': there is something already; choose another name"));
}

TEST_F(RepairCommandTest, NamesTheFileThatItCannotReadOrMake) {
  Write("noise", std::string(5000, 'x'));
  EXPECT_EQ(Run({"repair", "missing", "new.index"}),
            Failure("cannot open index 'missing': no such file or folder; kestan index makes one"));
  std::filesystem::create_directory(Path("empty"));
  EXPECT_EQ(Run({"repair", "empty", "new.index"}),
            Failure("index 'empty': there is no index; kestan index makes one"));
  EXPECT_EQ(Run({"repair", "noise", "new.index"}),
            Failure("cannot repair 'noise': no record was found"));
  const Outcome full = Run({"repair", "one.index", "new.index"}, FileSizeLimit(1000));
  EXPECT_EQ(full.err.substr(0, 33), "kestan: cannot make 'new.index': ") << full;
}

TEST_F(RepairCommandTest, LeavesNoFileIfItFails) {
  Write("noise", std::string(5000, 'x'));
  std::filesystem::create_directory(Path("empty"));
  for (const char* damaged : {"noise", "missing", "empty"}) {
    const Outcome outcome = Run({"repair", damaged, "new.index"});
    EXPECT_EQ(outcome.status, 2) << outcome;
    EXPECT_EQ(CountFiles("new.index"), 0);
  }
}

TEST_F(RepairCommandTest, DamagedSegmentIsSalvagedByItself) {
  std::string bytes = BytesOfFile(Path("my.index/1.segment"));
  Write("my.index/1.segment", bytes.replace(0, 40, 40, '\xff'));
  std::filesystem::remove(Path("my.index/2.terms"));
  const Files before = FilesIn("my.index");
  const Outcome outcome = Run({"repair", "my.index", "new.index", "-a"});
  EXPECT_EQ(outcome.status, 0) << outcome;
  EXPECT_NE(outcome.out.find("note: 1.segment: its index file is damaged\n"), std::string::npos)
      << outcome;
  EXPECT_NE(outcome.out.find("note: 2.terms: made again\n"), std::string::npos) << outcome;
  EXPECT_NE(outcome.out.find("saved: a\n"), std::string::npos) << outcome;
  EXPECT_NE(outcome.out.find("saved: b\n"), std::string::npos) << outcome;
  EXPECT_NE(outcome.out.find("saved 2 documents, 0 with words missing, 0 half-written, 0 lost\n"),
            std::string::npos)
      << outcome;
  EXPECT_EQ(FilesIn("my.index"), before);
  EXPECT_EQ(CountMatches("new.index", "cat"), 2u);
  EXPECT_EQ(Run({"check", "-q", "new.index"}).status, 0);
}

TEST_F(RepairCommandTest, WhatAFolderHasLostIsNamed) {
  std::filesystem::remove(Path("my.index/MANIFEST"));
  Write("my.index/2.segment", "none");
  EXPECT_EQ(Run({"repair", "my.index", "new.index"}),
            (Outcome{1,
                     "note: MANIFEST: made from the segments, in the order of their numbers\n"
                     "lost: MANIFEST: properties are lost\n"
                     "lost: 2.segment: no record was found\n"
                     "lost: b: its segment is lost\n"
                     "saved 1 document, 0 with words missing, 0 half-written, 1 lost\n",
                     ""}));
  EXPECT_EQ(Run({"repair", "-q", "my.index", "other.index"}), (Outcome{1, "", ""}));
  const Outcome json = Run({"repair", "my.index", "third.index", "--json"});
  EXPECT_EQ(json.out.rfind("{\"schema\":1,\"saved\":1,\"words_missing\":0,\"half_written\":0,"
                           "\"lost\":1,\"losses\":3,",
                           0),
            0u)
      << json;
}

}  // namespace
}  // namespace kestan_tests
