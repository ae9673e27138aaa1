// SPDX-License-Identifier: GPL-3.0-or-later
// Titles, summaries and user records, and the size that the scratch buffer takes for them.
#include <ostream>
#include <string>

#include "tests/support/gdbm_calls.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

// One of the three kinds of record.
struct Family {
  const char* prefix;
  char* (Kestan::*get)(const char*);
  int (Kestan::*put)(const char*, const char*);
  int (Kestan::*del)(const char*);

  friend std::ostream& operator<<(std::ostream& out, const Family& family) {
    return out << family.prefix;
  }
};

class SideRecordTest : public IndexTest, public testing::WithParamInterface<Family> {
 protected:
  char* Get(const std::string& name) { return (engine_.*GetParam().get)(name.c_str()); }
  int Put(const std::string& name, const std::string& text) {
    return (engine_.*GetParam().put)(name.c_str(), text.c_str());
  }
  int Del(const std::string& name) { return (engine_.*GetParam().del)(name.c_str()); }
  static std::string Key(const std::string& name) { return GetParam().prefix + name; }
};

INSTANTIATE_TEST_SUITE_P(
    Families, SideRecordTest,
    testing::Values(Family{"u-", &Kestan::DBGetUser, &Kestan::DBPutUser, &Kestan::DBDelUser},
                    Family{"s-", &Kestan::DBGetSummary, &Kestan::DBPutSummary,
                           &Kestan::DBDelSummary},
                    Family{"t-", &Kestan::DBGetTitle, &Kestan::DBPutTitle, &Kestan::DBDelTitle}));

TEST_P(SideRecordTest, IsStoredUnderItsPrefixWithoutTerminators) {
  EXPECT_EQ(Put("doc1", "abc"), 0);
  const Records stored = Stored();
  EXPECT_EQ(stored.at(Key("doc1")), "abc");
  EXPECT_EQ(stored.size(), 2u);  // the option flags are the other
}

TEST_P(SideRecordTest, ComesBackInTheScratchBuffer) {
  Put("doc1", "abc");
  char* const text = Get("doc1");
  EXPECT_STREQ(text, "abc");
  EXPECT_EQ(text, Kestan::WordBuf);
}

TEST_P(SideRecordTest, IsWrittenAtOnce) {
  GdbmWatch gdbm;
  Put("doc1", "abc");
  EXPECT_EQ(gdbm.Lines(), std::vector<std::string>{"store " + Key("doc1")});
}

TEST_P(SideRecordTest, IsReplacedByTheNextOne) {
  Put("doc1", "a longer text");
  EXPECT_EQ(Put("doc1", "abc"), 0);
  EXPECT_STREQ(Get("doc1"), "abc");
  EXPECT_EQ(Stored().at(Key("doc1")), "abc");
}

TEST_P(SideRecordTest, MayBeEmpty) {
  EXPECT_EQ(Put("doc1", ""), 0);
  EXPECT_STREQ(Get("doc1"), "");
  EXPECT_EQ(Stored().at(Key("doc1")), "");
}

TEST_P(SideRecordTest, AnEmptyTextNeedsNoStatedSize) {
  Put("doc1", "");
  EXPECT_NE(Get("doc1"), nullptr);
  EXPECT_EQ(Kestan::WBSize, 0u);
}

TEST_P(SideRecordTest, ThatIsAbsentIsNull) {
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(Get("doc1"), nullptr); }), "");
  EXPECT_EQ(Kestan::WordBuf, nullptr);
}

TEST_P(SideRecordTest, ThatIsAbsentCannotBeDeleted) {
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(Del("doc1"), -1); }), "");
}

TEST_P(SideRecordTest, IsDeletedOnce) {
  Put("doc1", "abc");
  EXPECT_EQ(Del("doc1"), 0);
  EXPECT_EQ(Get("doc1"), nullptr);
  EXPECT_EQ(Del("doc1"), -1);
  EXPECT_EQ(Stored().count(Key("doc1")), 0u);
}

TEST_P(SideRecordTest, ThatIsEmptyCanBeDeletedToo) {
  Put("doc1", "");
  EXPECT_EQ(Del("doc1"), 0);
  EXPECT_EQ(Stored().count(Key("doc1")), 0u);
}

TEST_P(SideRecordTest, IsDeletedFromTheFileAtOnce) {
  PlantAndReopen({{Key("doc1"), "abc"}});
  GdbmWatch gdbm;
  EXPECT_EQ(Del("doc1"), 0);
  EXPECT_EQ(gdbm.Count("delete"), 1u);
}

TEST_P(SideRecordTest, NeedsNoDocument) {
  Put("no document", "abc");
  EXPECT_STREQ(Get("no document"), "abc");
  EXPECT_STREQ(engine_.ListDocuments(), "");
}

TEST_P(SideRecordTest, OutlivesItsDocument) {
  engine_.AddDocumentWords("doc1", "words");
  Put("doc1", "abc");
  EXPECT_EQ(engine_.RemoveDocumentWords("doc1"), 0);
  EXPECT_STREQ(Get("doc1"), "abc");
  engine_.ShrinkIndex();
  EXPECT_STREQ(Get("doc1"), "abc");
}

TEST_P(SideRecordTest, KeepsTheOldNameOfARenamedDocument) {
  engine_.AddDocumentWords("old", "words");
  Put("old", "abc");
  engine_.MoveDocumentWords("old", "new");
  EXPECT_STREQ(Get("old"), "abc");
  EXPECT_EQ(Get("new"), nullptr);
}

TEST_P(SideRecordTest, TheTextMayLieInTheScratchBuffer) {
  Put("doc1", "abc");
  EXPECT_EQ((engine_.*GetParam().put)("doc2", Get("doc1")), 0);
  EXPECT_EQ(Stored().at(Key("doc2")), "abc");
}

TEST_P(SideRecordTest, TheNameMayLieInTheScratchBuffer) {
  Put("doc1", "doc2");
  Put("doc2", "abc");
  EXPECT_STREQ((engine_.*GetParam().get)(Get("doc1")), "abc");
}

TEST_P(SideRecordTest, WithoutAnIndexTheStoreComplains) {
  engine_.CloseIndex();
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(Get("doc1"), nullptr); }),
            "Kestan: Call to database::get without an open database\n");
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(Put("doc1", "abc"), -1); }),
            "Kestan: Call to database::put without an open database\n");
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(Del("doc1"), -1); }),
            "Kestan: Call to database::del without an open database\n");
}

TEST_P(SideRecordTest, AFileThatRefusesGivesItsErrorInSilence) {
  GdbmWatch gdbm;
  gdbm.Fail("store", 1, GDBM_FILE_WRITE_ERROR);
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(Put("doc1", "abc"), GDBM_FILE_WRITE_ERROR); }), "");
}

using SideRecordsTest = IndexTest;

TEST_F(SideRecordsTest, TheFamiliesDoNotCollide) {
  engine_.DBPutUser("doc1", "user");
  engine_.DBPutSummary("doc1", "summary");
  engine_.DBPutTitle("doc1", "title");
  EXPECT_STREQ(engine_.DBGetUser("doc1"), "user");
  EXPECT_STREQ(engine_.DBGetSummary("doc1"), "summary");
  EXPECT_STREQ(engine_.DBGetTitle("doc1"), "title");
  EXPECT_EQ(engine_.DBDelSummary("doc1"), 0);
  const Records stored = Stored();
  EXPECT_EQ(stored.at("u-doc1"), "user");
  EXPECT_EQ(stored.at("t-doc1"), "title");
  EXPECT_EQ(stored.count("s-doc1"), 0u);
}

TEST_F(SideRecordsTest, WhatCannotBeReadIsNotDeleted) {
  PlantAndReopen({{"t-name", "title"}});
  {
    GdbmWatch gdbm;
    gdbm.Fail("fetch", 1, GDBM_FILE_READ_ERROR);
    EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.DBDelTitle("name"), -1); }), "");
    EXPECT_EQ(gdbm.Count("delete"), 0u);
  }
  EXPECT_EQ(Stored().at("t-name"), "title");
}

TEST_F(SideRecordsTest, TheNextGetOverwritesTheText) {
  engine_.DBPutTitle("a", "first");
  engine_.DBPutTitle("b", "second");
  const char* const first = engine_.DBGetTitle("a");
  EXPECT_STREQ(first, "first");
  engine_.DBGetTitle("b");
  EXPECT_STREQ(first, "second");
}

TEST_F(SideRecordsTest, ATextWithZerosComesBackWhole) {
  const std::string text("a\0b", 3);
  PlantAndReopen({{"t-name", text}});
  EXPECT_EQ(std::string(engine_.DBGetTitle("name"), 4), text + '\0');
}

TEST_F(SideRecordsTest, TheEmptyNameIsTakenForAWord) {
  engine_.DBPutTitle("", "abcd");
  engine_.AddDocumentWords("doc1", "words");
  EXPECT_STREQ(engine_.DBGetTitle(""), "abcd");
  EXPECT_NE(std::string(engine_.CommonWords(1, -1)).find("t-\n"), std::string::npos);
  engine_.SetOptionFlag(1);
  EXPECT_EQ(Stored().at("t-"), "ab");
}

// What a text of `length` bytes makes of the stated size `before`.
struct Growth {
  std::uint32_t length;
  std::uint32_t after;

  friend std::ostream& operator<<(std::ostream& out, const Growth& growth) {
    return out << growth.length << " bytes";
  }
};

class SideRecordSizeTest : public IndexTest, public testing::WithParamInterface<Growth> {};

INSTANTIATE_TEST_SUITE_P(Lengths, SideRecordSizeTest,
                         testing::Values(Growth{1, 4096}, Growth{4095, 4096}, Growth{4096, 0},
                                         Growth{4097, 0}, Growth{8191, 0}, Growth{8192, 4096},
                                         Growth{12287, 4096}, Growth{12288, 0}, Growth{16383, 0},
                                         Growth{16384, 4096}, Growth{1000000, 4096},
                                         Growth{1003520, 0}));

TEST_P(SideRecordSizeTest, IsOneBitOfTheLengthPlus4096) {
  const std::string text(GetParam().length, 'x');
  engine_.DBPutTitle("name", text.c_str());
  EXPECT_EQ(engine_.DBGetTitle("name"), text);
  EXPECT_EQ(Kestan::WBSize, GetParam().after);
}

TEST_P(SideRecordSizeTest, ServesTheSameTextAgain) {
  const std::string text(GetParam().length, 'x');
  engine_.DBPutTitle("name", text.c_str());
  engine_.DBGetTitle("name");
  EXPECT_EQ(engine_.DBGetTitle("name"), text);
  EXPECT_EQ(Kestan::WBSize, GetParam().after);
}

TEST_F(SideRecordsTest, ATextOfJustTheStatedSizeDoesNotChangeIt) {
  engine_.DBPutTitle("short", "abc");
  engine_.DBGetTitle("short");
  const std::string text(4096, 'x');
  engine_.DBPutTitle("name", text.c_str());
  EXPECT_EQ(engine_.DBGetTitle("name"), text);
  EXPECT_EQ(Kestan::WBSize, 4096u);
  EXPECT_EQ(Kestan::WordBuf[4096], '\0');
}

TEST_F(SideRecordsTest, ATextOfOneByteMoreDoes) {
  engine_.DBPutTitle("short", "abc");
  engine_.DBGetTitle("short");
  const std::string text(4097, 'x');
  engine_.DBPutTitle("name", text.c_str());
  EXPECT_EQ(engine_.DBGetTitle("name"), text);
  EXPECT_EQ(Kestan::WBSize, 0u);
  EXPECT_STREQ(engine_.DBGetTitle("short"), "abc");
  EXPECT_EQ(Kestan::WBSize, 4096u);
}

TEST_F(SideRecordsTest, ALargerStatedSizeStays) {
  engine_.DBPutWords("list", std::string(5000, ' ').c_str());
  EXPECT_EQ(Kestan::WBSize, 9096u);
  const std::string text(9096, 'x');
  engine_.DBPutTitle("name", text.c_str());
  EXPECT_EQ(engine_.DBGetTitle("name"), text);
  EXPECT_EQ(Kestan::WBSize, 9096u);
}

}  // namespace
}  // namespace kestan_tests
