// SPDX-License-Identifier: GPL-3.0-or-later
// Archives as containers of documents, for cli/sync/container_run.cc.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "cli/sync/container_run.h"
#include "tests/cli/sync/run_index_test.h"
#include "tests/support/packed.h"

namespace kestan_cli {
namespace {

using kestan_tests::Archive;
using kestan_tests::PackedMembers;

class ArchiveRunTest : public RunIndexTest {
 protected:
  void SetUp() override {
    RunIndexTest::SetUp();
    options_.reading.archives = true;
  }

  void WriteZip(const PackedMembers& members) { Write("d/a.zip", Archive("zip", "none", members)); }
};

TEST_F(ArchiveRunTest, ArchivesAreSkippedUnlessAskedFor) {
  options_.reading.archives = false;
  options_.why = true;
  WriteZip({{"1", "one"}});
  Write("d/b.tar.gz", Archive("ustar", "gzip", {{"1", "one"}}));
  Write("d/text", "text");
  EXPECT_EQ(Index(),
            "skipped 'd/a.zip': an archive; --archives reads what is in it\n"
            "skipped 'd/b.tar.gz': an archive; --archives reads what is in it\n" +
                Report(1, 0, 0, 0, 0, "2 (2 archives)"));
  EXPECT_EQ(status_, 0);
}

TEST_F(ArchiveRunTest, WithNothingElseToIndexTheOptionIsNamed) {
  options_.reading.archives = false;
  WriteZip({{"1", "one"}});
  EXPECT_NE(Index().find("1 archive; --archives reads what is in them"), std::string::npos);
  EXPECT_EQ(status_, 2);
}

TEST_F(ArchiveRunTest, EachMemberIsADocumentReadByItsName) {
  for (const char* name : {"d/a.zip", "d/a.tar", "d/a.tar.xz", "d/a.tgz"}) {
    const std::string file = name;
    const bool is_zip = file == "d/a.zip";
    const char* const filter = file == "d/a.tar.xz" ? "xz" : file == "d/a.tgz" ? "gzip" : "none";
    std::filesystem::remove_all("d");
    std::filesystem::remove_all("my.index");
    Write(file, Archive(is_zip ? "zip" : "ustar", filter,
                        {{"dir/page.html", "<title>The page</title><p>walrus"},
                         {"ls.1.gz", kestan_tests::Packed(".TH LS 1\n.SH NAME\nls - walrus\n")},
                         {"m.eml", "From: Ann <ann@example.org>\nSubject: hello\n\nwalrus\n"},
                         {"picture.png", std::string("\x89PNG\0", 5)}}));
    EXPECT_EQ(Index(), Report(3, 0, 0, 0, 0, "1 (1 binary file)")) << file;
    EXPECT_EQ(List(), file + "#dir/page.html\n" + file + "#ls.1.gz\n" + file + "#m.eml\n");
    EXPECT_EQ(Info(file + "#dir/page.html").title, "The page");
    EXPECT_EQ(Info(file + "#ls.1.gz").title, "ls(1) - walrus");
    EXPECT_EQ(Info(file + "#m.eml").title, "hello");
    EXPECT_NE(Info(file + "#m.eml").host_data.find(" from=\"Ann"), std::string::npos);
    EXPECT_EQ(Index(), Report(0, 0, 0, 0, 3)) << file;
  }
}

TEST_F(ArchiveRunTest, MembersHaveTheirOwnTimes) {
  Write("d/a.zip", Archive("zip", "none", {{"1", "one"}}));
  Write("d/a.tar", Archive("ustar", "none", {{"1", "one"}}));
  Index();
  for (const char* name : {"d/a.zip#1", "d/a.tar#1"}) {
    EXPECT_EQ(Info(name).host_data.rfind("size=3 mtime=1700000000.000000000 ", 0), 0u)
        << Info(name).host_data;
  }
}

TEST_F(ArchiveRunTest, UnchangedArchiveIsNotOpened) {
  WriteZip({{"1", "one"}, {"2", "two"}});
  Index();
  std::filesystem::permissions("d/a.zip", std::filesystem::perms::none);
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 2));
}

TEST_F(ArchiveRunTest, OnlyMembersThatChangeAreIndexedAgain) {
  WriteZip({{"1", "one"}, {"2", "two"}, {"3", "three"}});
  Index();
  AddToRecord("d/a.zip#2", "\nmine");
  AddToRecord("d/a.zip#3", "\nthird");
  WriteZip({{"1", "one"}, {"2", "changed"}, {"moved", "three"}, {"new", "four"}});
  EXPECT_EQ(Index(), Report(2, 1, 0, 1, 1));
  EXPECT_EQ(List(), "d/a.zip#1\nd/a.zip#2\nd/a.zip#moved\nd/a.zip#new\n");
  EXPECT_NE(Info("d/a.zip#2").host_data.find("\nmine"), std::string::npos);
  EXPECT_NE(Info("d/a.zip#moved").host_data.find("\nthird"), std::string::npos);
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 4));
}

TEST_F(ArchiveRunTest, RenamedArchiveIsMovedAndOneThatIsGoneIsPruned) {
  WriteZip({{"1", "one"}, {"2", "two"}});
  Write("d/text", "text");
  Index();
  std::filesystem::rename("d/a.zip", "d/b.zip");
  EXPECT_EQ(Index(), Report(0, 0, 2, 0, 1));
  std::filesystem::remove("d/b.zip");
  options_.prune = true;
  EXPECT_EQ(Index(), Report(0, 0, 0, 2, 1));
}

TEST_F(ArchiveRunTest, OptionIsRememberedWithTheRoot) {
  WriteZip({{"1", "one"}});
  Index();
  WriteZip({{"1", "one"}, {"2", "two"}});
  options_ = {};
  EXPECT_EQ(Index(), Report(1, 0, 0, 0, 1));
  EXPECT_NE(Run({"stats", "my.index"}).out.find("--archives"), std::string::npos);
}

TEST_F(ArchiveRunTest, BrokenArchiveLosesNothing) {
  const std::string good = Archive("ustar", "gzip", {{"1", "one"}, {"2", std::string(5000, 'x')}});
  Write("d/a.tgz", good);
  Index();
  Write("d/a.tgz", good.substr(0, good.size() - 9));
  const std::string report = Index();
  EXPECT_NE(report.find("skipped 'd/a.tgz': cannot be unpacked: it ends too early"),
            std::string::npos)
      << report;
  EXPECT_EQ(List(), "d/a.tgz#1\nd/a.tgz#2\n");
  EXPECT_EQ(status_, 1);
  Write("d/a.tgz", good);
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 2));
}

TEST_F(ArchiveRunTest, BrokenMemberLosesNeitherItselfNorTheOthers) {
  const PackedMembers inner{{"x", "deep"}};
  const std::string good =
      Archive("zip", "none", {{"1", "a long text"}, {"in.zip", Archive("zip", "none", inner)}});
  Write("d/a.zip", good);
  EXPECT_EQ(Index(), Report(2, 0, 0, 0, 0));
  std::string bad = good;
  bad[bad.find("PK\x07\x08") - 4] ^= 1;
  Write("d/a.zip", bad);
  const std::string report = Index();
  EXPECT_NE(report.find("skipped 'd/a.zip#1': cannot be unpacked: "), std::string::npos) << report;
  EXPECT_EQ(List(), "d/a.zip#1\nd/a.zip#in.zip#x\n");
  Write("d/a.zip", Archive("zip", "none", {{"1", "a long text"}, {"in.zip", "PK\x03\x04 broken"}}));
  EXPECT_NE(Index().find("skipped 'd/a.zip#in.zip': "), std::string::npos);
  EXPECT_EQ(List(), "d/a.zip#1\nd/a.zip#in.zip#x\n");
}

TEST_F(ArchiveRunTest, MailboxInAnArchiveHasItsMessages) {
  const std::string message =
      "From a@b Fri Nov 20 10:11:12 2026\nFrom: Ann <ann@example.org>\nSubject: walrus\n\nbody\n\n";
  WriteZip({{"mail/box", message + message}});
  EXPECT_EQ(Index(), Report(2, 0, 0, 0, 0));
  EXPECT_EQ(List(), "d/a.zip#mail/box#1\nd/a.zip#mail/box#2\n");
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 2));
}

TEST_F(ArchiveRunTest, MembersOfOneNameAreAllKept) {
  Write("d/a.tar", Archive("ustar", "none", {{"x", "first"}, {"x", "second"}, {"x", "third"}}));
  EXPECT_EQ(Index(), Report(3, 0, 0, 0, 0));
  EXPECT_EQ(List(), "d/a.tar###x\nd/a.tar##x\nd/a.tar#x\n");
  EXPECT_EQ(Search("second"), "100 d/a.tar##x\n");
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 3));
}

TEST_F(ArchiveRunTest, NamesThatNoDocumentCanHaveAreReported) {
  Write("d/a.tar", Archive("pax", "none",
                           {{"a\nb", "one"}, {std::string(5000, 'n'), "two"}, {"..", "three"}}));
  const std::string report = Index();
  EXPECT_NE(report.find("its name holds a line feed"), std::string::npos) << report;
  EXPECT_NE(report.find("its name is too long"), std::string::npos) << report;
  EXPECT_EQ(List(), "d/a.tar#..\n");
}

TEST_F(ArchiveRunTest, SnippetsAreReadFromMembers) {
  const std::string inner = Archive("ustar", "gzip", {{"x", "in the deep walrus"}});
  Write("d/a.tar", Archive("ustar", "none",
                           {{"x", "first walrus"}, {"x", "second walrus"}, {"in.tgz", inner}}));
  Index();
  const kestan_tests::Outcome outcome = Run({"search", "--snippets", "my.index", "walrus"});
  for (const char* snippet : {"first [walrus]", "second [walrus]", "deep [walrus]"}) {
    EXPECT_NE(outcome.out.find(snippet), std::string::npos) << snippet << "\n" << outcome;
  }
  Write("d/a.tar", Archive("ustar", "none", {{"x", "no more"}}));
  EXPECT_EQ(Run({"search", "--snippets", "my.index", "walrus"}).out.find("first [w"),
            std::string::npos);
}

TEST_F(ArchiveRunTest, ConverterReadsAMemberFromATemporaryFileOnly) {
  options_.reading.converters = {"up=tr a-z A-Z {}", "cat=cat {}"};
  WriteZip({{"../../x.cat", "walrus"}, {"$(touch pwned).cat", "walrus"}});
  EXPECT_EQ(Index(), Report(2, 0, 0, 0, 0));
  EXPECT_FALSE(std::filesystem::exists("pwned"));
  EXPECT_EQ(Search("walrus"), "100 d/a.zip#$(touch pwned).cat\n100 d/a.zip#../../x.cat\n");
}

// ---- A file of the name that a part would have ----

const std::string kMessage =
    "From a@b Fri Nov 20 10:11:12 2026\nFrom: Ann <ann@example.org>\nSubject: hello\n\nwalrus\n\n";

TEST_F(ArchiveRunTest, FileOfThePartsNameIsKeptBesideThePart) {
  Write("d/box", kMessage);
  Write("d/box#1", "penguin");
  EXPECT_EQ(Index(), Report(2, 0, 0, 0, 0));
  EXPECT_EQ(List(), "d/box##1\nd/box#1\n");
  EXPECT_EQ(Search("walrus"), "100 d/box##1\n");
  EXPECT_EQ(Search("penguin"), "100 d/box#1\n");
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 2));
}

TEST_F(ArchiveRunTest, PartGivesWayToAFileThatComesLater) {
  Write("d/box", kMessage);
  Index();
  AddToRecord("d/box#1", "\nmine");
  Write("d/box#1", "penguin");
  EXPECT_EQ(Index(), Report(1, 0, 1, 0, 1));
  EXPECT_EQ(List(), "d/box##1\nd/box#1\n");
  EXPECT_NE(Info("d/box##1").host_data.find("\nmine"), std::string::npos);
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 2));
}

TEST_F(ArchiveRunTest, PartGivesWayWhenOnlyTheFileIsNamedAndWhenAllIsReadAgain) {
  Write("d/box", kMessage);
  Index();
  AddToRecord("d/box#1", "\nmine");
  Write("d/box#1", "penguin");
  options_.paths = {"d/box#1"};
  EXPECT_EQ(Index(), Report(1, 0, 1, 0, 0));
  options_.paths = {"d"};
  options_.all = true;
  EXPECT_EQ(Index(), Report(0, 2, 0, 0, 0));
  EXPECT_EQ(List(), "d/box##1\nd/box#1\n");
  EXPECT_NE(Info("d/box##1").host_data.find("\nmine"), std::string::npos);
}

TEST_F(ArchiveRunTest, PartGetsItsNameBackWhenTheFileIsGone) {
  Write("d/box", kMessage);
  Write("d/box#1", "penguin");
  Index();
  std::filesystem::remove("d/box#1");
  options_.prune = true;
  EXPECT_EQ(Index(), Report(0, 0, 0, 1, 1));
  Write("d/box", kMessage + kMessage);
  Index();
  EXPECT_EQ(List(), "d/box#1\nd/box#2\n");
}

TEST_F(ArchiveRunTest, MemberGivesWayToAFile) {
  WriteZip({{"x", "walrus"}});
  Write("d/a.zip#x", "penguin");
  EXPECT_EQ(Index(), Report(2, 0, 0, 0, 0));
  EXPECT_EQ(Search("walrus"), "100 d/a.zip##x\n");
  EXPECT_EQ(Search("penguin"), "100 d/a.zip#x\n");
  const kestan_tests::Outcome outcome = Run({"search", "--snippets", "my.index", "walrus"});
  EXPECT_NE(outcome.out.find("[walrus]"), std::string::npos) << outcome;
}

}  // namespace
}  // namespace kestan_cli
