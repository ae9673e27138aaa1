// SPDX-License-Identifier: GPL-3.0-or-later
// Words of one letter: they are found in the documents that have them, and nowhere else, whatever
// becomes of other documents.
#include <gtest/gtest.h>
#include <kestan/search.h>

#include <filesystem>
#include <string>

#include "tests/cli/command_test.h"
#include "tests/cli/index_folder.h"

namespace kestan_tests {
namespace {

class ShortWordsTest : public CommandTest {
 protected:
  void Remove(const std::string& name) {
    std::filesystem::remove(Path(name));
    ASSERT_EQ(Run({"index", "my.index", name.substr(0, name.find('/')), "--prune"}).status, 0);
  }

  void Compact() {
    ChangeIndex(Path("my.index"),
                [](kestan::search::IndexWriter& writer) { ASSERT_TRUE(writer.Compact().ok()); });
  }

  std::string Search(const std::string& query) {
    return AnswersOfIndex(Path("my.index"), query, Path(""));
  }

  // Expects that each of `words` finds nothing but the document "d/new".
  void ExpectOnlyNew(const std::string& words) {
    for (const char word : words) EXPECT_EQ(Search({word}), "100 d/new\n") << word;
  }

  // Expects that no word of `words` finds anything, and that the index is without faults.
  void ExpectNone(const std::string& words) {
    for (const char word : words) EXPECT_EQ(Search({word}), "") << word;
    EXPECT_TRUE(IsWhole(Path("my.index")));
  }
};

TEST_F(ShortWordsTest, AreNotFoundInADocumentThatComesAfterOneThatIsGone) {
  Add("d/old", "vitamin c and vitamin D, plan B\n");
  Remove("d/old");
  Compact();
  Add("d/new", "a fish\n");
  ExpectNone("cdDbB");
  ExpectOnlyNew("a");
  EXPECT_EQ(Search("vitamin"), "");
}

TEST_F(ShortWordsTest, AreNotFoundInADocumentThatIsGoneBeforeACompaction) {
  Add("d/old", "vitamin c\n");
  Remove("d/old");
  Add("d/new", "a fish\n");
  ExpectNone("c");
  ExpectOnlyNew("a");
}

TEST_F(ShortWordsTest, OfRemovedDocumentsDoNotLowerPercentages) {
  Add("d/old", "c c c c\n");
  Add("d/new", "c\n");
  Remove("d/old");
  EXPECT_EQ(Search("c"), "100 d/new\n");
  EXPECT_EQ(Search("c OR dog"), "100 d/new\n");
}

TEST_F(ShortWordsTest, OfEarlierVersionsAreNotFound) {
  Add("d/new", "vitamin c\n");
  Add("d/new", "vitamin d instead, a fish\n");
  ExpectNone("c");
  ExpectOnlyNew("ad");
  Compact();
  ExpectNone("c");
  ExpectOnlyNew("ad");
}

TEST_F(ShortWordsTest, AreReclaimedByACompaction) {
  std::string text;
  for (int i = 0; i < 30000; ++i) text += "c ";
  Add("d/old", text);
  Add("d/new", "c\n");
  Remove("d/old");
  Compact();
  std::uintmax_t bytes = 0;
  for (const auto& file : std::filesystem::directory_iterator(Path("my.index"))) {
    bytes += file.file_size();
  }
  EXPECT_LT(bytes, text.size());
  ExpectOnlyNew("c");
}

TEST_F(ShortWordsTest, KeepTheirDocumentsThroughACompaction) {
  Add("d/old", "vitamin c\n");
  Add("d/new", "c major and c minor\n");
  Remove("d/old");
  Compact();
  ExpectOnlyNew("c");
  EXPECT_EQ(Search("\"c major and c minor\""), "100 d/new\n");
}

TEST_F(ShortWordsTest, AreListedWithTheNumberOfDocumentsThatLive) {
  for (const char* name : {"d/new", "d/old", "d/older"}) Add(name, "c\n");
  Remove("d/old");
  Remove("d/older");
  const auto reader = kestan::search::IndexReader::Open(Path("my.index"));
  ASSERT_TRUE(reader.ok());
  const auto terms = reader->Terms("");
  ASSERT_TRUE(terms.ok());
  ASSERT_EQ(terms->size(), 1u);
  EXPECT_EQ(terms->at(0).documents, 1u);
  EXPECT_EQ(Search("c*"), "100 d/new\n");
}

TEST_F(ShortWordsTest, AreLeftOutWithStopWords) {
  Write("d/new", "the c major\n");
  ASSERT_EQ(Run({"index", "my.index", "d", "--stop-words", "english"}).status, 0);
  ExpectNone("c");
  EXPECT_EQ(Search("major"), "100 d/new\n");
}

}  // namespace
}  // namespace kestan_tests
