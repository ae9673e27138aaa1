// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/cli/both_kinds_test.h"

namespace kestan_tests {
namespace {

class StatsCommandTest : public BothKindsTest {
 protected:
  // Returns what `kestan stats` prints after "WHAT: ".
  std::string Fact(const std::string& what) {
    const std::string out = "\n" + Run({"stats", "my.index"}).out;
    const std::size_t at = out.find("\n" + what + ": ");
    if (at == std::string::npos) return "nothing";
    const std::size_t begin = at + what.size() + 3;
    return out.substr(begin, out.find('\n', begin) - begin);
  }
};

INSTANTIATE_TEST_SUITE_P(, StatsCommandTest, kBothKinds, NameOfKind);

TEST_P(StatsCommandTest, CountsDocumentsAndWords) {
  Add("a", "cat dog\n");
  Add("b", "dog I bird\n");
  EXPECT_EQ(Fact("documents"), "2");
  // Class Kestan keeps I as i too.
  EXPECT_EQ(Fact("words"), IsFolder() ? "4" : "5");
  EXPECT_EQ(Fact("postings"), IsFolder() ? "5" : "6");
  EXPECT_EQ(Fact("words in 1 document"), IsFolder() ? "3" : "4");
  EXPECT_EQ(Fact("words in 2 documents"), "1");
}

TEST_P(StatsCommandTest, CountsOfAnEmptyIndexAreZero) {
  MakeEmpty();
  EXPECT_EQ(Fact("documents"), "0");
  EXPECT_EQ(Fact("words"), "0");
  EXPECT_EQ(Fact("positions kept"), "yes");
}

TEST_P(StatsCommandTest, LackOfPositionsIsReported) {
  MakeEmpty(false);
  EXPECT_EQ(Fact("option flags"), "1");
  EXPECT_EQ(Fact("positions kept"), "no");
}

TEST_P(StatsCommandTest, JsonHasTheSameNumbers) {
  Add("a", "cat dog\n");
  const std::string out = Run({"stats", "my.index", "--json"}).out;
  EXPECT_EQ(out.substr(0, 26), "{\"schema\":1,\"documents\":1,");
  EXPECT_NE(out.find("\"frequencies\":[{\"documents_from\":1,\"documents_to\":1,\"words\":2,"
                     "\"postings\":2}]"),
            std::string::npos)
      << out;
}

TEST_P(StatsCommandTest, MissingIndexIsAnError) {
  EXPECT_EQ(Run({"stats", "none"}),
            Failure("cannot open index 'none': no such file or folder; kestan index makes one"));
}

class FolderStatsTest : public StatsCommandTest {};

INSTANTIATE_TEST_SUITE_P(, FolderStatsTest, testing::Values(Kind::kFolder), NameOfKind);

TEST_P(FolderStatsTest, TheLanguageIsThatOfTheFirstTextsOrTheOneThatWasSaid) {
  Write("a.txt", "Das ist ein Haus, und es ist nicht aus Holz.\n");
  EXPECT_EQ(Run({"index", "my.index", "a.txt"}).status, 0);
  EXPECT_EQ(Fact("language"), "german");
  EXPECT_EQ(Run({"index", "my.index", "--language=fr"}).status, 0);
  EXPECT_EQ(Fact("language"), "french");
  EXPECT_NE(Run({"stats", "my.index", "--json"}).out.find("\"language\":\"french\""),
            std::string::npos);
  EXPECT_EQ(Run({"index", "my.index", "--language=klingon"}).status, 2);
}

TEST_P(FolderStatsTest, RemovedDocumentsCountByThemselves) {
  std::vector<Document> documents{Named("a", "cat dog\n")};
  for (int i = 0; i < 9; ++i) documents.push_back(Named(std::to_string(i), "dog\n"));
  AddTo("my.index", documents);
  Remove("a");
  EXPECT_EQ(Fact("documents"), "9");
  EXPECT_EQ(Fact("removed documents"), "1");
  EXPECT_EQ(Fact("words"), "1");
  EXPECT_EQ(Fact("postings"), "9");
}

TEST_P(FolderStatsTest, SizesAreThoseOfTheFiles) {
  Add("a", "cat dog\n");
  const auto bytes = [&](const std::string& name) {
    return std::filesystem::file_size(Path("my.index/" + name));
  };
  const auto text = [](std::uint64_t size) { return std::to_string(size) + " bytes"; };
  EXPECT_EQ(Fact("term dictionaries"), text(bytes("1.terms")));
  EXPECT_EQ(Fact("document tables"), text(bytes("1.documents")));
  EXPECT_EQ(Fact("edits"), "0 bytes");
  EXPECT_EQ(Fact("folder"),
            text(bytes("1.terms") + bytes("1.documents") + bytes("1.segment") + bytes("MANIFEST")));
}

TEST_P(FolderStatsTest, RootsAreShownWithTheirOptions) {
  auto writer = kestan::search::IndexWriter::Open(Path("my.index"));
  ASSERT_TRUE(writer.ok());
  writer->SetProperty(
      "roots",
      "{\"version\":1,\"roots\":[{\"path\":\"/n\",\"exclude\":[\"*.log\",[255]],"
      "\"stop_words\":\"english\",\"strip_encoded\":true,\"no_ignore\":true,\"prune\":true},"
      "{\"path\":\"/o\"}]}");
  ASSERT_TRUE(writer->Commit().ok());
  const std::string out = Run({"stats", "my.index"}).out;
  EXPECT_NE(out.find("kept up to date with: /n --exclude=*.log --exclude=\\xff "
                     "--stop-words=english --strip-encoded --no-ignore --prune\n"
                     "kept up to date with: /o\n"),
            std::string::npos)
      << out;
  const std::string json = Run({"stats", "--json", "my.index"}).out;
  EXPECT_NE(json.find("{\"path\":\"/o\",\"options\":[]}"), std::string::npos) << json;
}

TEST_P(FolderStatsTest, PropertyThatIsNoListOfRootsShowsNone) {
  for (const char* property : {"", "x", "{}", "{\"roots\":1}", "{\"roots\":[1]}",
                               "{\"roots\":[{\"path\":1,\"exclude\":\"x\"}]}"}) {
    auto writer = kestan::search::IndexWriter::Open(Path("my.index"));
    ASSERT_TRUE(writer.ok());
    writer->SetProperty("roots", property);
    ASSERT_TRUE(writer->Commit().ok());
    EXPECT_EQ(Run({"stats", "my.index"}).status, 0) << property;
    EXPECT_EQ(Run({"stats", "--json", "my.index"}).status, 0) << property;
  }
}

class FileStatsTest : public StatsCommandTest {};

INSTANTIATE_TEST_SUITE_P(, FileStatsTest, testing::Values(Kind::kFile), NameOfKind);

TEST_P(FileStatsTest, WordsOfRemovedDocumentsCountUntilTheShrink) {
  Add("a", "cat dog\n");
  Add("b", "dog\n");
  Remove("a");
  EXPECT_EQ(Fact("documents"), "1");
  EXPECT_EQ(Fact("words"), "2");
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    ASSERT_EQ(engine.ShrinkIndex(), 0);
  }
  EXPECT_EQ(Fact("documents"), "1");
  EXPECT_EQ(Fact("words"), "1");
}

TEST_P(FileStatsTest, SizesOfRecordsAreReported) {
  Document document = Named("a", "cat dog\n");
  document.title = "cat dog";
  AddTo("my.index", {document});
  EXPECT_EQ(Fact("file"), std::to_string(std::filesystem::file_size(Path("my.index"))) + " bytes");
  EXPECT_EQ(Fact("titles"), "10 bytes");       // t-a, cat dog
  EXPECT_EQ(Fact("name records"), "5 bytes");  // c- and a code, a
}

TEST_P(FileStatsTest, ReportsDoNotChangeTheIndex) {
  Add("a", "cat\n");
  const std::string before = IndexBytes();
  Run({"list", "my.index"});
  Run({"stats", "my.index"});
  Run({"words", "my.index", "--counts"});
  EXPECT_EQ(IndexBytes(), before);
}

}  // namespace
}  // namespace kestan_tests
