// SPDX-License-Identifier: GPL-3.0-or-later
// An index that is filled with documents to its last code, emptied, shrunk, and filled again.
#include <algorithm>

#include "tests/indexing/planting.h"
#include "tests/model/clock.h"

namespace kestan_tests {
namespace {

constexpr unsigned kMost = 65535;
constexpr char kFull[] = "Kestan: Too many documents (max=65535) -- try shrinking database\n";

class DocumentLimitTest : public IndexTest {
 protected:
  void SetUp() override {
    kestan_model::SetClock(1000000000);
    IndexTest::SetUp();
  }

  static std::string Name(unsigned number) { return "document" + std::to_string(number); }

  // Adds documents that hold the word "every" once; nothing may be printed.
  void AddFrom(unsigned first, unsigned last) {
    const auto add = [&] {
      for (unsigned number = first; number <= last; ++number) {
        engine_.AddDocumentWords(Name(number).c_str(), "every");
      }
    };
    EXPECT_EQ(StandardErrorOf(add), "");
  }

  // Tries to add one document more; the message says that there is no code left.
  void ExpectFull() {
    const auto add = [&] {
      const char* const words = engine_.AddDocumentWords("one more", "every newcomer");
      EXPECT_STREQ(words, "");
      EXPECT_NE(words, Kestan::WordBuf);
    };
    EXPECT_EQ(StandardErrorOf(add), kFull);
    EXPECT_EQ(engine_.DocumentTimestamp("one more"), 0U);
    EXPECT_EQ(engine_.QueryWord("newcomer"), -1);
  }

  // As many lines as there are documents with the word "every" that are not removed.
  unsigned CountListed() { return CountLines(Listing(engine_.QueryWord("every"))); }

  static unsigned CountLines(const std::string& text) {
    return static_cast<unsigned>(std::count(text.begin(), text.end(), '\n'));
  }

  void RemoveAll() {
    for (unsigned number = 1; number <= kMost; ++number) {
      EXPECT_EQ(engine_.RemoveDocumentWords(Name(number).c_str()), 0);
    }
  }
};

TEST_F(DocumentLimitTest, The65535thDocumentIsTheLast) {
  AddFrom(1, kMost - 1);
  EXPECT_EQ(CountListed(), kMost - 1);
  EXPECT_STREQ(engine_.CommonWords(kMost, -1), "");

  AddFrom(kMost, kMost);
  EXPECT_EQ(CountListed(), kMost);
  ExpectFull();
  EXPECT_EQ(CountListed(), kMost);
  EXPECT_EQ(CountLines(engine_.ListDocuments()), kMost);
  EXPECT_STREQ(engine_.CommonWords(kMost, kMost), "every\n");
  EXPECT_STREQ(engine_.CommonWords(0.99999, 0.99999), "");  // rounds to 65534
  EXPECT_STREQ(engine_.CommonWords(0.999999, 0.999999), "every\n");
  const int every = engine_.QueryWord("every");
  EXPECT_EQ(Listing(engine_.QueryNegate(every)), "");
  engine_.FreeQueryResult(every);
  EXPECT_EQ(CountLines(Listing(engine_.QueryNegate(-1))), kMost);
}

TEST_F(DocumentLimitTest, AFullIndexTakesAsManyDocumentsAgainAfterAShrink) {
  AddFrom(1, kMost);
  RemoveAll();
  EXPECT_EQ(CountListed(), 0U);
  ExpectFull();  // the codes of removed documents come back with the shrink only
  EXPECT_EQ(engine_.ShrinkIndex(), 0);
  EXPECT_EQ(Listing(engine_.QueryWord("every")), "");
  EXPECT_EQ(Listing(engine_.QueryNegate(-1)), "");

  AddFrom(1, 1);
  EXPECT_EQ(CountListed(), 1U);
  AddFrom(2, kMost);
  EXPECT_EQ(CountListed(), kMost);
  ExpectFull();

  const Records stored = Stored();
  EXPECT_EQ(stored.at(NameKey(kMost)), Name(1));  // removed last, reused first
  EXPECT_EQ(stored.at(NameKey(1)), Name(kMost));
  EXPECT_EQ(stored.at("g-code"), Units({kMost}));
  EXPECT_EQ(stored.at("g-avail"), "");
  EXPECT_EQ(stored.count("g-deleted"), 0U);
  std::string every;
  for (unsigned code = kMost; code >= 1; --code) every += EncodedPosting(code, {1});
  EXPECT_EQ(stored.at("every"), every);
}

TEST_F(DocumentLimitTest, AFullIndexOfRemovedDocumentsGivesBackTheOneCodeThatWasShrunk) {
  PlantAndReopen(Document(Name(7), 7) + Records{{"g-code", Units({kMost})}});
  engine_.RemoveDocumentWords(Name(7).c_str());
  ExpectFull();
  engine_.ShrinkIndex();
  AddFrom(8, 8);
  ExpectFull();
  EXPECT_EQ(Stored().at(NameKey(7)), Name(8));
}

}  // namespace
}  // namespace kestan_tests
