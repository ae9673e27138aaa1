// SPDX-License-Identifier: GPL-3.0-or-later
// The stripping functions of kestan/indexing/strip.cc in a locale that has more letters.
#include <kestan/kestan.h>
#include <strings.h>

#include <clocale>
#include <cstdlib>

#include "tests/indexing/strip_block.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

// A host may set a locale; the tests set one of 8 bits, which they build where the machine has the
// sources of locales.
class StripLocaleTest : public testing::Test {
 protected:
  void SetUp() override {
    const std::string name = "en_US.ISO-8859-1";
    const std::string build = "localedef -i en_US -f ISO-8859-1 '" + (folder_ / name) + "' 2>&1";
    if (std::system((build + " > '" + (folder_ / "log") + "'").c_str()) == 0) {
      setenv("LOCPATH", (folder_ / "").c_str(), 1);
    }
    if (std::setlocale(LC_CTYPE, name.c_str()) == nullptr) {
      GTEST_SKIP() << "there is no 8-bit locale, and none can be built";
    }
  }

  static std::string NonWords(std::string_view text) {
    return StripInPlace(text, 1, Kestan::StripNonWords).text;
  }

  static std::string Words(std::string_view text, const char* stop_text) {
    const char* const no_list[] = {nullptr};
    return StripInPlace(text, 0,
                        [&](char* buffer, unsigned length) {
                          return Kestan::StripWords(buffer, length, stop_text, no_list);
                        })
        .text;
  }

 private:
  TempDir folder_;
};

TEST_F(StripLocaleTest, ItsLettersAreLetters) {
  EXPECT_EQ(NonWords("na\xefve.caf\xe9"), "na\xefve caf\xe9 ");
  EXPECT_EQ(Words("\xe9t\xe9 o\xf9 cat", "the"), "\xe9t\xe9  cat");
  EXPECT_EQ(Words("\xe9t\xe9 cat", "\xe9t\xe9"), " cat");
}

TEST_F(StripLocaleTest, ItsLettersMatchStopWordsInBothCases) {
  if (strcasecmp("\xc4", "\xe4") != 0) {
    GTEST_SKIP() << "strcasecmp does not follow the locale here; the address sanitizer's does not";
  }
  EXPECT_EQ(Words("\xc4HN cat", "\xe4hn"), " cat");
  EXPECT_EQ(Words("\xe4hn cat", "\xc4HN"), " cat");
  EXPECT_EQ(Words("\xf6hn cat", "\xe4hn"), "\xf6hn cat");
}

TEST_F(StripLocaleTest, ItsOtherBytesSeparate) { EXPECT_EQ(NonWords("a\xd7z"), "a z "); }

// As a signed char it is -1, which the classification takes for the end of a file.
TEST_F(StripLocaleTest, Byte255IsNoLetter) {
  EXPECT_EQ(NonWords("a\xffz"), "a z ");
  EXPECT_EQ(Words("abc\xffthe", "the"), "abc\xff");
}

TEST_F(StripLocaleTest, HighBytesStillMakeABadLine) {
  EXPECT_EQ(StripInPlace("caf\xe9\ncat\n", 0, Kestan::StripBadLines).text, "\ncat\n");
}

}  // namespace
}  // namespace kestan_tests
