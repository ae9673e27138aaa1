#include "search/vocabulary/inflections.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace kestan::search {
namespace {

bool HasInflection(const std::string& word, const std::string& form) {
  const auto inflections = Inflections(word);
  return std::find(inflections.begin(), inflections.end(), form) != inflections.end();
}

TEST(InflectionsTest, TheWordItselfComesFirst) {
  for (const char* word : {"flow", "flows", "study", "is", "planned"}) {
    EXPECT_EQ(Inflections(word).front(), word);
  }
}

TEST(InflectionsTest, RegularInflectionsFindEachOther) {
  for (const char* word : {"flow", "flows", "flowed", "flowing"}) {
    for (const char* form : {"flow", "flows", "flowed", "flowing"}) {
      EXPECT_TRUE(HasInflection(word, form)) << word << " " << form;
    }
  }
}

TEST(InflectionsTest, SilentEComesAndGoes) {
  EXPECT_TRUE(HasInflection("solve", "solving"));
  EXPECT_TRUE(HasInflection("solving", "solve"));
  EXPECT_TRUE(HasInflection("solve", "solved"));
}

TEST(InflectionsTest, YBecomesIe) {
  EXPECT_TRUE(HasInflection("study", "studies"));
  EXPECT_TRUE(HasInflection("studies", "study"));
  EXPECT_TRUE(HasInflection("studied", "studies"));
}

TEST(InflectionsTest, DoubledLettersAreSingledOut) {
  EXPECT_TRUE(HasInflection("planned", "plan"));
  EXPECT_TRUE(HasInflection("swimming", "swim"));
}

TEST(InflectionsTest, SomeSBelongsToTheWord) {
  EXPECT_FALSE(HasInflection("glass", "glas"));
  EXPECT_FALSE(HasInflection("focus", "focu"));
  EXPECT_FALSE(HasInflection("analysis", "analysi"));
  EXPECT_TRUE(HasInflection("glass", "glasses"));
}

TEST(InflectionsTest, ShortWordsHaveFewInflections) {
  EXPECT_EQ(Inflections("is"), std::vector<std::string>{"is"});
  EXPECT_EQ(Inflections("fan"), (std::vector<std::string>{"fan", "fans"}));
  EXPECT_GT(Inflections("fans").size(), 2u);
}

TEST(InflectionsTest, EachInflectionComesOnce) {
  for (const char* word : {"flows", "seed", "glasses", "studies", "needed", "oozes"}) {
    const auto inflections = Inflections(word);
    EXPECT_EQ(std::set<std::string>(inflections.begin(), inflections.end()).size(),
              inflections.size())
        << word;
  }
}

}  // namespace
}  // namespace kestan::search
