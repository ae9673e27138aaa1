// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/matching/reading.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "search/index/question.h"
#include "tests/search/matching/plain_segments.h"

namespace kestan::search {
namespace {

using kestan_tests::DocumentOfWords;
using kestan_tests::Plain;
using kestan_tests::PlainSegments;
using Lines = std::vector<std::string>;

// An archive about linux: so many documents hold the word, one of them says how to install it.
std::vector<DocumentOfWords> Archive(int documents, int with_linux) {
  std::vector<DocumentOfWords> archive;
  for (int i = 2; i < documents; ++i) {
    archive.push_back(Plain(
        "d" + std::to_string(i),
        (i < with_linux ? "linux" : "other") + std::string(" news of the day and of some people")));
  }
  archive.push_back(Plain("other", "install on a laptop with a scsi drive"));
  archive.push_back(Plain("guide", "install linux on a laptop with scsi drive"));
  if (with_linux > 0) archive.push_back(Plain("name", "linux drive"));
  return archive;
}

OptionalWords OptionalIn(const std::vector<DocumentOfWords>& documents, const std::string& text,
                         WordsMean words = WordsMean::kBest) {
  PlainSegments segments;
  segments.Add(documents);
  SearchOptions options;
  options.words = words;
  Reading reading(text, segments.snapshot(), options);
  reading.AsAsked();
  EXPECT_TRUE(reading.status().ok());
  return reading.optional_words();
}

std::vector<DocumentOfWords> Half(int documents, int with_linux) {
  std::vector<DocumentOfWords> half;
  for (int i = 0; i < documents; ++i) {
    half.push_back(Plain(std::to_string(i), i < with_linux ? "linux scsi" : "scsi"));
  }
  half.front() = Plain("0", "linux drive");
  return half;
}

TEST(ReadingTest, AWordInMoreThanHalfOfTheDocumentsIsOptional) {
  EXPECT_EQ(OptionalIn(Half(100, 50), "linux drive").common, Lines());
  EXPECT_EQ(OptionalIn(Half(100, 51), "linux drive").common, Lines{"linux"});
}

TEST(ReadingTest, InFewerThanAHundredDocumentsNoWordIsOptional) {
  EXPECT_EQ(OptionalIn(Half(99, 99), "linux drive").common, Lines());
  EXPECT_EQ(OptionalIn(Half(100, 100), "linux drive").common, Lines{"linux"});
}

TEST(ReadingTest, RemovedDocumentsDoNotCount) {
  std::vector<DocumentOfWords> documents = Half(110, 60);
  for (std::size_t i = 1; i <= 10; ++i) documents[i].is_removed = true;
  EXPECT_EQ(OptionalIn(documents, "linux drive").common, Lines());
  documents[10].is_removed = false;
  documents[109].is_removed = true;
  EXPECT_EQ(OptionalIn(documents, "linux drive").common, Lines{"linux"});
}

TEST(ReadingTest, AllAndAnyTakeWordsForWhatTheyAre) {
  EXPECT_EQ(OptionalIn(Half(100, 60), "linux drive", WordsMean::kAll).common, Lines());
  EXPECT_EQ(OptionalIn(Half(100, 60), "linux drive", WordsMean::kAny).common, Lines());
}

class CommonWordsTest : public testing::Test {
 protected:
  CommonWordsTest() { segments_.Add(Archive(120, 100)); }

  Answer Asked(const std::string& text) {
    auto answer = Ask(text, segments_.snapshot(), {});
    EXPECT_TRUE(answer.ok());
    const auto count = CountAnswers(text, segments_.snapshot(), {});
    EXPECT_TRUE(count.ok());
    EXPECT_EQ(*count, answer->found.total);
    return *answer;
  }

  std::string Name(const RankedDocument& document) {
    return std::string(segments_.snapshot().segments[0]->NameOf(document.id.code));
  }

  PlainSegments segments_;
};

TEST_F(CommonWordsTest, AQuestionFindsTheRightDocumentFirst) {
  const Answer answer = Asked("how do i install linux on a laptop with a scsi drive");
  ASSERT_EQ(answer.found.total, 3u);
  EXPECT_EQ(Name(answer.found.best[0]), "guide");
  EXPECT_EQ(Name(answer.found.best[1]), "other");
  EXPECT_EQ(Name(answer.found.best[2]), "name");
  EXPECT_EQ(answer.notes,
            (Lines{"'how', 'do', 'i', 'on', 'a', 'with' say little and were not required",
                   "'linux' is in most documents and was not required",
                   "2 documents have all of these words; those after them have some of them"}));
}

TEST_F(CommonWordsTest, ACommonWordScoresAndDecidesNothing) {
  const Answer answer = Asked("linux scsi");
  ASSERT_EQ(answer.found.total, 2u);
  EXPECT_EQ(Name(answer.found.best[0]), "guide");
  EXPECT_GT(answer.found.best[0].score, answer.found.best[1].score);
  EXPECT_EQ(answer.found.terms, (Lines{"linux", "scsi"}));
}

TEST_F(CommonWordsTest, ACommonWordAloneFindsItsDocuments) {
  EXPECT_EQ(Asked("linux").found.total, 100u);
  EXPECT_EQ(Asked("linux").notes, Lines());
}

TEST_F(CommonWordsTest, AnExplanationNamesWhatIsNotRequired) {
  const auto explained = ExplainAnswer("linux scsi", segments_.snapshot(), {});
  ASSERT_TRUE(explained.ok());
  EXPECT_EQ(explained->documents, 2u);
  ASSERT_EQ(explained->parts.size(), 2u);
  EXPECT_EQ(explained->parts[0].part, "linux and its forms");
  EXPECT_EQ(explained->parts[0].note, "1 word, not required");
}

}  // namespace
}  // namespace kestan::search
