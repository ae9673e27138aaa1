// SPDX-License-Identifier: GPL-3.0-or-later
// Listings that double the scratch buffer again and again.
#include <algorithm>
#include <functional>

#include "tests/indexing/planting.h"

namespace kestan_tests {
namespace {

constexpr int kLines = 3000;  // of 30 to 90 bytes: five doublings of 4096 bytes

class LongListingTest : public IndexTest {
 protected:
  // A word or a name of 30 to 60 bytes.
  static std::string Line(int number) {
    std::string line = std::to_string(number) + ":";
    return line + std::string(30 + static_cast<std::size_t>(number) % 31 - line.size(), 'x');
  }

  // All words as one text.
  static std::string Text() {
    std::string text;
    for (int number = 0; number < kLines; ++number) text += Line(number) + " ";
    return text;
  }

  void AddDocuments() {
    for (int number = 0; number < kLines; ++number) {
      engine_.AddDocumentWords(Line(number).c_str(), "cat");
    }
  }

  // The lines of a text in the order of their bytes.
  static std::vector<std::string> Sorted(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = text.find('\n', at);
      lines.push_back(text.substr(at, end - at));
      at = end + 1;
    }
    std::sort(lines.begin(), lines.end());
    return lines;
  }

  // Every line with `prefix` before it.
  static std::vector<std::string> Expected(const std::string& prefix) {
    std::vector<std::string> lines;
    for (int number = 0; number < kLines; ++number) lines.push_back(prefix + Line(number));
    std::sort(lines.begin(), lines.end());
    return lines;
  }

  // What the doublings of 4096 come to, once each line has found `spare` bytes more than it has.
  static std::uint32_t SizeFor(const std::string& text, std::size_t spare) {
    std::uint32_t size = 4096;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = text.find('\n', at) + 1;
      if (size < end + spare) size *= 2;
      at = end;
    }
    return size;
  }
};

TEST_F(LongListingTest, OfNewWordsIsWhole) {
  const std::string words = engine_.AddDocumentWords("one", Text().c_str());
  EXPECT_EQ(Sorted(words), Expected(""));
  EXPECT_EQ(Kestan::WBSize, SizeFor(words, 1));
  EXPECT_GE(Kestan::WBSize, 4096U << 5);
}

TEST_F(LongListingTest, OfCommonWordsIsWhole) {
  engine_.AddDocumentWords("one", Text().c_str());
  const std::string words = engine_.CommonWords(1, 1);
  EXPECT_EQ(Sorted(words), Expected(""));
  EXPECT_GE(Kestan::WBSize, SizeFor(words, 1));
}

TEST_F(LongListingTest, OfDocumentsIsWhole) {
  AddDocuments();
  const std::string names = engine_.ListDocuments();
  EXPECT_EQ(Sorted(names), Expected(""));
  EXPECT_EQ(Kestan::WBSize, SizeFor(names, 1));
  EXPECT_GE(Kestan::WBSize, 4096U << 5);
}

TEST_F(LongListingTest, OfAResultIsWhole) {
  AddDocuments();
  const std::string lines = Listing(engine_.QueryWord("cat"));
  EXPECT_EQ(Sorted(lines), Expected("100 "));
  EXPECT_EQ(Kestan::WBSize, SizeFor(lines, 15));  // 20 bytes beside the name, 5 of them used
  EXPECT_GE(Kestan::WBSize, 4096U << 5);
}

TEST_F(LongListingTest, OfAWordListIsWhole) {
  std::string text;
  for (int number = 0; number < kLines; ++number) text += Line(number) + "\n";
  EXPECT_EQ(engine_.DBPutWords("list", text.c_str()), 0);
  EXPECT_EQ(engine_.DBGetWords("list"), text);
}

}  // namespace
}  // namespace kestan_tests
