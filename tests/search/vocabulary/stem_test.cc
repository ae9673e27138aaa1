// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/vocabulary/stem.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kestan::search {
namespace {

// Returns the stem of `word`, or the word itself if it has no other forms.
std::string StemOf(const std::string& word, std::string_view language = "english") {
  Stemmer stemmer(FindLanguage(language));
  if (!stemmer.HasForms(word)) return word;
  const Status status = stemmer.Open();
  EXPECT_TRUE(status.ok()) << status.ToString();
  return std::string(stemmer.Stem(word));
}

void ExpectOneStem(std::string_view language, const std::vector<std::string>& words) {
  for (const std::string& word : words) {
    EXPECT_EQ(StemOf(word, language), StemOf(words.front(), language)) << word;
  }
}

TEST(StemmerTest, FormsOfAnEnglishWordHaveOneStem) {
  ExpectOneStem("english", {"flow", "flows", "flowed", "flowing"});
  ExpectOneStem("english", {"solve", "solves", "solved", "solving"});
  ExpectOneStem("english", {"study", "studies", "studied", "studying"});
  ExpectOneStem("english", {"plan", "plans", "planned", "planning"});
  ExpectOneStem("english", {"happy", "happiness"});
  ExpectOneStem("english", {"connect", "connected", "connecting", "connection", "connections"});
}

TEST(StemmerTest, EachLanguageHasFormsOfItsOwn) {
  ExpectOneStem("german", {"haus", "hauser", "hausern"});
  ExpectOneStem("spanish", {"cancion", "canciones"});
  ExpectOneStem("french", {"cheval", "chevaux"});
  ExpectOneStem("russian", {"книга", "книги", "книгу", "книгами"});
  ExpectOneStem("greek", {"ανθρωποσ", "ανθρωπου", "ανθρωποι"});
  ExpectOneStem("turkish", {"kitap", "kitabin", "kitaplar"});
  EXPECT_NE(StemOf("hauser"), StemOf("haus"));
}

TEST(StemmerTest, WordsOfOtherScriptsHaveNoForms) {
  EXPECT_FALSE(Stemmer(FindLanguage("english")).HasForms("книги"));
  EXPECT_FALSE(Stemmer(FindLanguage("russian")).HasForms("houses"));
  EXPECT_FALSE(Stemmer(FindLanguage("english")).HasForms("北京"));
  EXPECT_TRUE(Stemmer(FindLanguage("serbian")).HasForms("knjiga"));
  EXPECT_TRUE(Stemmer(FindLanguage("serbian")).HasForms("књига"));
}

TEST(StemmerTest, OneLetterAndNoLanguageHaveNoForms) {
  EXPECT_FALSE(Stemmer(DefaultLanguage()).HasForms(""));
  EXPECT_FALSE(Stemmer(DefaultLanguage()).HasForms("s"));
  EXPECT_TRUE(Stemmer(DefaultLanguage()).HasForms("go"));
  EXPECT_FALSE(Stemmer(FindLanguage("russian")).HasForms("я"));
  EXPECT_FALSE(Stemmer(nullptr).HasForms("houses"));
}

TEST(StemmerTest, ALanguageThatTheLibraryLacksIsAnError) {
  const Language klingon{"klingon", "xx"};
  const Status status = Stemmer(&klingon).Open();
  EXPECT_EQ(status.code(), StatusCode::kSystem);
  EXPECT_EQ(status.message(), "libstemmer knows no word forms of klingon");
}

TEST(StemmerTest, EveryLanguageOfTheTableHasAStemmer) {
  const std::string names = LanguageNames() + ", ";
  std::size_t count = 0;
  for (std::size_t start = 0; start < names.size(); ++count) {
    const std::size_t end = names.find(", ", start);
    const std::string name = names.substr(start, end - start);
    EXPECT_TRUE(Stemmer(FindLanguage(name)).Open().ok()) << name;
    start = end + 2;
  }
  EXPECT_EQ(count, 28U);
}

TEST(StemmerTest, LettersThatChangeAreNotOfThePrefix) {
  const Stemmer english(DefaultLanguage());
  EXPECT_EQ(english.PrefixOf("connect"), "connect");
  EXPECT_EQ(english.PrefixOf("happi"), "happ");
  EXPECT_EQ(english.PrefixOf("hope"), "hop");
  EXPECT_EQ(english.PrefixOf("possibl"), "possib");
  EXPECT_EQ(english.PrefixOf("die"), "d");
  EXPECT_EQ(english.PrefixOf("e"), "e");  // never nothing: that would be all words
  EXPECT_EQ(Stemmer(FindLanguage("greek")).PrefixOf("ανθρωπ"), "αν");
  EXPECT_EQ(Stemmer(FindLanguage("finnish")).PrefixOf("talo"), "ta");
  EXPECT_EQ(Stemmer(FindLanguage("arabic")).PrefixOf("كتاب"), "");
}

// Endings and letters that the stemmer of a language changes, and others.
const std::map<std::string, std::vector<std::string>>& PartsOfWords() {
  static const std::map<std::string, std::vector<std::string>> kParts = {
      {"english", {"y",    "i",  "e",      "s",     "es",      "ies",  "ied", "ing", "ed",  "ly",
                   "li",   "bl", "bility", "ation", "ational", "ness", "ful", "iz",  "ogi", "al",
                   "enci", "d",  "l",      "t",     "sk",      "dy",   "a",   "o",   "p",   "pp"}},
      {"dutch",
       {"heden", "heid", "aa", "ee", "oo", "en", "n", "r", "b", "s", "lijk", "ing", "t", "i", "hid",
        "end", "k"}},
      {"finnish",
       {"ksi", "kse", "nsa", "ssa", "tta", "a", "o", "u", "i", "e", "y", "zz", "tt", "k", "l",
        "mme", "ien", "sten", "j"}},
      {"french", {"emment", "amment", "aux",     "eaux",    "ence", "ences", "logie",
                  "usion",  "ique",   "ication", "icateur", "y",    "i",     "e",
                  "s",      "er",     "qu",      "l",       "t",    "eux",   "ite"}},
      {"spanish",
       {"encia", "encias", "logia", "ucion", "iendo", "yendo", "cion", "es", "a", "o", "u", "gue",
        "s", "n", "ivos", "r"}},
      {"italian",
       {"enza", "enze", "logia", "uzione", "azioni", "mente", "a", "e", "i", "o", "ch", "r", "t",
        "ira", "anti"}},
      {"turkish",
       {"lar", "ler", "b", "c", "d", "g", "p", "t", "k", "i", "u", "a", "o", "in", "dan", "oc",
        "ab"}},
      {"greek",
       {"ικο", "ακια", "ωθηκαν", "ιτσα", "οσ", "ου", "α", "κ", "β", "λ", "ν", "ηθ", "αδεσ"}},
      {"russian", {"ость", "ый", "ами", "ивши", "нн", "ейше", "а", "к", "о", "в", "ь", "и", "т"}},
      {"german",
       {"en", "ern", "e", "st", "ung", "heit", "keit", "lich", "s", "t", "u", "y", "a", "niss",
        "h"}},
      {"romanian",
       {"ism", "ist", "ativ", "ivitate", "ibilitate", "iune", "ilor", "ea", "i", "e", "a", "t", "r",
        "n"}},
  };
  return kParts;
}

RC_GTEST_PROP(StemmerTest, EachWordBeginsWithThePrefixOfItsStem, ()) {
  const auto& [name, parts] = *rc::gen::elementOf(PartsOfWords());
  const auto chosen = *rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(parts));
  std::string word;
  for (const std::string& part : chosen) word += part;
  Stemmer stemmer(FindLanguage(name));
  RC_PRE(word.size() < 100 && stemmer.HasForms(word));
  RC_ASSERT(stemmer.Open().ok());
  const std::string stem(stemmer.Stem(word));
  RC_ASSERT(word.rfind(std::string(stemmer.PrefixOf(stem)), 0) == 0);
}

RC_GTEST_PROP(StemmerTest, AnyBytesHaveAStem, (const std::string& bytes)) {
  const auto* const names =
      "arabic, armenian, finnish, hindi, irish, tamil, yiddish, serbian, turkish";
  for (std::string_view rest = names; !rest.empty();) {
    const std::size_t end = std::min(rest.find(", "), rest.size());
    Stemmer stemmer(FindLanguage(rest.substr(0, end)));
    RC_ASSERT(stemmer.Open().ok());
    const std::string stem(stemmer.Stem(bytes));
    RC_ASSERT(stem == stemmer.Stem(bytes));
    rest.remove_prefix(std::min(end + 2, rest.size()));
  }
}

}  // namespace
}  // namespace kestan::search
