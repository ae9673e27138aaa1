#include "search/vocabulary/word_forms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace kestan::search {
namespace {

bool HasForm(const std::string& word, const std::string& form) {
  const auto forms = FormsOf(word);
  return std::find(forms.begin(), forms.end(), form) != forms.end();
}

TEST(WordFormsTest, TheWordItselfComesFirst) {
  for (const char* word : {"flow", "flows", "study", "is", "planned"}) {
    EXPECT_EQ(FormsOf(word).front(), word);
  }
}

TEST(WordFormsTest, RegularFormsFindEachOther) {
  for (const char* word : {"flow", "flows", "flowed", "flowing"}) {
    for (const char* form : {"flow", "flows", "flowed", "flowing"}) {
      EXPECT_TRUE(HasForm(word, form)) << word << " " << form;
    }
  }
}

TEST(WordFormsTest, SilentEComesAndGoes) {
  EXPECT_TRUE(HasForm("solve", "solving"));
  EXPECT_TRUE(HasForm("solving", "solve"));
  EXPECT_TRUE(HasForm("solve", "solved"));
}

TEST(WordFormsTest, YBecomesIe) {
  EXPECT_TRUE(HasForm("study", "studies"));
  EXPECT_TRUE(HasForm("studies", "study"));
  EXPECT_TRUE(HasForm("studied", "studies"));
}

TEST(WordFormsTest, DoubledLettersAreSingledOut) {
  EXPECT_TRUE(HasForm("planned", "plan"));
  EXPECT_TRUE(HasForm("swimming", "swim"));
}

TEST(WordFormsTest, SomeSBelongsToTheWord) {
  EXPECT_FALSE(HasForm("glass", "glas"));
  EXPECT_FALSE(HasForm("focus", "focu"));
  EXPECT_FALSE(HasForm("analysis", "analysi"));
  EXPECT_TRUE(HasForm("glass", "glasses"));
}

TEST(WordFormsTest, ShortWordsHaveFewForms) {
  EXPECT_EQ(FormsOf("is"), std::vector<std::string>{"is"});
  EXPECT_EQ(FormsOf("fan"), (std::vector<std::string>{"fan", "fans"}));
  EXPECT_GT(FormsOf("fans").size(), 2u);
}

TEST(WordFormsTest, EachFormComesOnce) {
  for (const char* word : {"flows", "seed", "glasses", "studies", "needed", "oozes"}) {
    const auto forms = FormsOf(word);
    EXPECT_EQ(std::set<std::string>(forms.begin(), forms.end()).size(), forms.size()) << word;
  }
}

}  // namespace
}  // namespace kestan::search
