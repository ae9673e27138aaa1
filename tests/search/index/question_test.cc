// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/question.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tests/search/matching/plain_segments.h"

namespace kestan::search {
namespace {

using kestan_tests::DocumentOfWords;
using kestan_tests::Plain;
using kestan_tests::PlainSegments;
using Lines = std::vector<std::string>;

std::vector<DocumentOfWords> Texts() {
  return {Plain("all", "flow in a boundary layer over a wing"), Plain("few", "a wing"),
          Plain("forms", "flows of layers computed"), Plain("name", "Flow of Sand"),
          Plain("joined", "thin two dimensional body")};
}

class AskTest : public testing::Test {
 protected:
  AskTest() { segments_.Add(Texts()); }

  Answer Asked(const std::string& text, const SearchOptions& options = {}) {
    auto answer = Ask(text, segments_.snapshot(), options);
    EXPECT_TRUE(answer.ok());
    const auto count = CountAnswers(text, segments_.snapshot(), options);
    EXPECT_TRUE(count.ok());
    EXPECT_EQ(*count, answer->found.total) << text;
    return *answer;
  }

  // The names of the documents found, the best first, each with a blank after it.
  std::string Names(const std::string& text, WordsMean words = WordsMean::kBest) {
    SearchOptions options;
    options.words = words;
    std::string names;
    for (const RankedDocument& document : Asked(text, options).found.best) {
      const auto& segment = *segments_.snapshot().segments[document.id.segment];
      names.append(segment.NameOf(document.id.code)).append(" ");
    }
    return names;
  }

  std::vector<std::string> Notes(const std::string& text) { return Asked(text).notes; }

  PlainSegments segments_;
};

TEST_F(AskTest, WordsSideBySideFindTheDocumentsThatHoldAllOfThem) {
  EXPECT_EQ(Names("boundary wing"), "all ");
  EXPECT_EQ(Notes("boundary wing"), Lines());
}

TEST_F(AskTest, WithoutADocumentThatHoldsAllWordsThoseThatHoldSomeAnswer) {
  EXPECT_EQ(Names("wing sand"), "name few all ");
  EXPECT_EQ(Notes("wing sand"),
            Lines{"no document has all of these words; these have some of them"});
}

TEST_F(AskTest, StopWordsCountOnlyWhereNothingElseIsLeft) {
  EXPECT_EQ(Names("the wing of the"), "few all ");
  EXPECT_EQ(Names("over a"), "all ");
}

TEST_F(AskTest, StopWordsThatWereLeftOutAreNamed) {
  EXPECT_EQ(Notes("the wing of the"), Lines{"'the', 'of' say little and were not required"});
  EXPECT_EQ(Notes("over a"), Lines());
  EXPECT_EQ(Notes("\"the wing\""), Lines());
}

TEST_F(AskTest, WhatIsIgnoredOrCutIsNamed) {
  EXPECT_EQ(Notes("wing 486"), Lines{"'486' holds no letters and was ignored"});
  EXPECT_EQ(Notes("wing " + std::string(65, 'x')).front(),
            "'xxxxxxxxxxxxxxxxxxxx...' is too long: its first 64 characters count");
}

TEST_F(AskTest, AllAndAnySayWhatTheyLeaveOut) {
  SearchOptions options;
  options.words = WordsMean::kAny;
  EXPECT_EQ(Asked("the wing", options).notes, Lines{"'the' says little and was not required"});
  options.words = WordsMean::kAll;
  EXPECT_EQ(Asked("the wing", options).notes, Lines());
}

TEST_F(AskTest, SyntaxOfOtherToolsIsNotedFirst) {
  EXPECT_EQ(Notes("wing | flow"), Lines{"'|': | is no operator; write OR"});
  EXPECT_EQ(Notes("wing | sand"),
            (Lines{"'|': | is no operator; write OR",
                   "no document has all of these words; these have some of them"}));
}

TEST_F(AskTest, LongQuestionsFindAllWordsFirstAndThenSome) {
  EXPECT_EQ(Names("what is the flow in a boundary layer over the wing"), "all forms few name ");
  EXPECT_EQ(Notes("what is the flow in a boundary layer over the wing"),
            (Lines{"'what', 'is', 'the', 'in', 'a', 'over' say little and were not required",
                   "1 document has all of these words; those after it have some of them"}));
}

TEST_F(AskTest, DocumentsWithAllWordsHaveHigherScoresThanThoseWithSome) {
  const auto best = Asked("what is the flow in a boundary layer over the wing").found.best;
  for (std::size_t i = 1; i < best.size(); ++i) EXPECT_GE(best[i - 1].score, best[i].score);
  EXPECT_GT(best[0].score, best[1].score);
}

TEST_F(AskTest, LimitCutsTheDocumentsWithSomeAndNotTheTotal) {
  SearchOptions options;
  options.limit = 2;
  const Answer answer = Asked("what is the flow in a boundary layer over the wing", options);
  EXPECT_EQ(answer.found.total, 4u);
  EXPECT_EQ(answer.found.best.size(), 2u);
}

TEST_F(AskTest, FourWordsWithoutStopWordsAreNoQuestion) {
  EXPECT_EQ(Names("flow boundary layer wing"), "all ");
}

TEST_F(AskTest, ThreeWordsWithStopWordsAreNoLongQuestion) {
  EXPECT_EQ(Names("the boundary layer of a wing"), "all ");
}

TEST_F(AskTest, AllAndAnyAreTakenAtTheirWord) {
  EXPECT_EQ(Names("what flow boundary layer wing", WordsMean::kAll), "");
  EXPECT_EQ(Names("flow boundary layer wing", WordsMean::kAll), "all ");
  EXPECT_EQ(Names("wing sand", WordsMean::kAny), "name few all ");
}

TEST_F(AskTest, OperatorsAreTakenAtTheirWord) {
  EXPECT_EQ(Names("wing AND sand"), "");
  EXPECT_EQ(Notes("wing AND sand"), Lines());
}

TEST_F(AskTest, QuestionsFindWordsThatPunctuationJoinsOneByOne) {
  EXPECT_EQ(Names("what of two-winged sand in sail-plane oceans"), "name joined few all ");
}

TEST_F(AskTest, MisspelledWordsAreNamedWhileTheOthersAnswer) {
  EXPECT_EQ(Names("wing lyer"), "few all ");
  EXPECT_EQ(Notes("wing lyer"),
            (Lines{"no document has all of these words; these have some of them",
                   "no document has 'lyer'; did you mean 'layer'?"}));
  EXPECT_EQ(Asked("wing lyer").suggestions, Lines{"layer"});
}

TEST_F(AskTest, WordsWithoutASuggestionAreNamedTooButNotThoseInAnotherForm) {
  EXPECT_EQ(Notes("winged flowing zzzzzzzz").back(), "no document has 'zzzzzzzz'");
  EXPECT_EQ(Notes("winged flowing zzzzzzzz").size(), 2u);
}

TEST_F(AskTest, AMissingWordAloneHasSuggestionsAndNoNote) {
  EXPECT_EQ(Notes("lyer"), Lines());
  EXPECT_EQ(Asked("lyer").suggestions, Lines{"layer"});
}

TEST_F(AskTest, NothingToSearchForIsSaid) {
  EXPECT_EQ(Notes("123 !"), Lines{"the query holds no letters to search for"});
}

TEST_F(AskTest, SegmentsChangeNoAnswer) {
  const std::string text = "what is the flow in a boundary layer over the wing of lyer";
  const Answer whole = Asked(text);
  PlainSegments split;
  for (const DocumentOfWords& document : Texts()) split.Add({document});
  const auto answer = Ask(text, split.snapshot(), {});
  ASSERT_TRUE(answer.ok());
  EXPECT_EQ(answer->notes, whole.notes);
  EXPECT_EQ(answer->found.terms, whole.found.terms);
  ASSERT_EQ(answer->found.best.size(), whole.found.best.size());
  for (std::size_t i = 0; i < whole.found.best.size(); ++i) {
    EXPECT_EQ(answer->found.best[i].score, whole.found.best[i].score);
  }
}

}  // namespace
}  // namespace kestan::search
