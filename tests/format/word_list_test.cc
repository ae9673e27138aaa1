// SPDX-License-Identifier: GPL-3.0-or-later
// The encoding of word lists by itself, against a plain reading of every damaged record.
#include <kestan/format/word_list.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <kestan/text/white_space.h>
#include "tests/format/word_items.h"
#include "tests/support/counted.h"

namespace kestan_tests {
namespace {

const std::string kGood =
    Item(0, "alpha") + Item(5, "bet") + Item(3, "s") + Item(4) + Item(0, "beta");

// Encodes into memory of exactly the size that the contract asks for.
std::string Encode(std::string_view text) {
  char* const out = static_cast<char*>(std::malloc(text.size() + 1));
  const std::size_t size = kestan::EncodeWordList(text, out);
  const std::string encoded(out, size);
  std::free(out);
  return encoded;
}

// Decodes into a buffer of its own.
std::string Decode(std::string_view list) {
  kestan::ScratchBuffer out;
  const DBDatumPtr record = Counted(list);
  const std::string text = kestan::DecodeWordList(*record.ptr, &out);
  out.Release();
  return text;
}

using Words = std::vector<std::string>;

Words Visited(std::string_view list) {
  Words words;
  kestan::ForEachListedWord(*Counted(list).ptr,
                            [&](std::string_view word) { words.emplace_back(word); });
  return words;
}

Words LinesOf(const std::string& text) {
  std::istringstream in(text);
  Words lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// The same, byte by byte and without a buffer to outgrow.
std::string PlainDecode(std::string_view list) {
  std::string out;
  std::size_t previous = 0;
  for (const char c : list) {
    const unsigned byte = static_cast<unsigned char>(c);
    if (byte < 128) {
      out += c;
      continue;
    }
    if (!out.empty()) out += '\n';
    const std::size_t start = out.size();
    for (unsigned i = 0; start > 0 && i < byte - 128; ++i) out += out[previous + i];
    previous = start;
  }
  if (!out.empty()) out += '\n';
  return out.substr(0, out.find('\0'));  // as a reader of the text sees it
}

TEST(WordListTest, EncodesWhatIsNewInEachWord) {
  EXPECT_EQ(Encode("alpha alphabet alps"), Item(0, "alpha") + Item(5, "bet") + Item(3, "s"));
  EXPECT_EQ(Encode(""), "");
}

TEST(WordListTest, AnEncodingIsAtMostOneByteLongerThanTheText) {
  EXPECT_EQ(Encode("a b c"), Item(0, "a") + Item(0, "b") + Item(0, "c"));
  EXPECT_EQ(Encode("a"), Item(0, "a"));
}

TEST(WordListTest, DecodesWhatItEncoded) {
  EXPECT_EQ(Decode(Encode("alpha alphabet alps alps b")), "alpha\nalphabet\nalps\nalps\nb\n");
}

TEST(WordListTest, WordsAreVisitedOneByOne) {
  EXPECT_EQ(Visited(Encode("alpha alphabet b")), Words({"alpha", "alphabet", "b"}));
  EXPECT_EQ(Visited(Item(0, "a") + Item(0) + Item(0, "b")), Words({"a", "", "b"}));
  EXPECT_EQ(Visited(""), Words());
}

TEST(WordListTest, LineFeedsAndNulsEndWhatIsVisitedAsTheyEndTheText) {
  const std::string nul(1, '\0');
  for (const std::string& list :
       {Item(0, "a\nb") + Item(0, "c"), Item(0, "a" + nul + "b") + Item(0, "c"),
        Item(0, "a") + Item(0, nul) + Item(0, "c"), Item(0, "a\n" + nul + "b"), Item(0, "\n\n")}) {
    EXPECT_EQ(Visited(list), LinesOf(Decode(list))) << list;
  }
}

TEST(WordListTest, TheDecodedTextIsTheBuffers) {
  kestan::ScratchBuffer out;
  EXPECT_EQ(kestan::DecodeWordList(*Counted(kGood).ptr, &out), out.bytes);
  out.Release();
}

TEST(WordListTest, AFirstWordSharesNothing) {
  EXPECT_EQ(Decode(Item(5, "abc")), "abc\n");
  EXPECT_EQ(Decode(Item(127)), "");
}

TEST(WordListTest, AWordThatSharesMoreThanThereIsGoesOnWithItself) {
  EXPECT_EQ(Decode(Item(0, "ab") + Item(7)), "ab\nab\nab\na\n");
}

TEST(WordListTest, BytesBeforeTheFirstMarkAreAWord) {
  EXPECT_EQ(Decode("ab" + Item(1, "c")), "ab\nac\n");
}

TEST(WordListTest, EmptyWordsBeforeTheFirstByteLeaveNoLine) {
  EXPECT_EQ(Decode(Item(0) + Item(0, "a")), "a\n");
}

TEST(WordListTest, EveryTruncationIsReadWithinItsBytes) {
  for (std::size_t size = 0; size <= kGood.size(); ++size) {
    const std::string cut = kGood.substr(0, size);
    EXPECT_EQ(Decode(cut), PlainDecode(cut)) << size;
    EXPECT_EQ(Visited(cut), LinesOf(PlainDecode(cut))) << size;
  }
}

TEST(WordListTest, EveryChangedByteIsReadWithinTheRecord) {
  for (std::size_t at = 0; at < kGood.size(); ++at) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string changed = kGood;
      changed[at] = static_cast<char>(byte);
      ASSERT_EQ(Decode(changed), PlainDecode(changed)) << at << ": " << byte;
      ASSERT_EQ(Visited(changed), LinesOf(PlainDecode(changed))) << at << ": " << byte;
    }
  }
}

TEST(WordListTest, MarksAloneStayWithinTheBuffer) {
  for (const char mark : {'\x80', '\x81', '\xc0', '\xff'}) {
    const std::string list = Item(0, "word") + std::string(300, mark);
    EXPECT_EQ(Decode(list), PlainDecode(list));
  }
}

TEST(WordListTest, TheLastLineFeedAndTheTerminatorHaveRoom) {
  const std::string word(5000, 'x');
  EXPECT_EQ(Decode(word), word + "\n");
  EXPECT_EQ(Decode(Item(0, word)), word + "\n");
}

// Decodes two words, the second of which begins at 2, into a buffer of `size` bytes.
//   Returns  the size that the buffer states then.
std::uint32_t SizeAfterTwoWords(std::uint32_t size) {
  kestan::ScratchBuffer out;
  out.Grow(size);
  kestan::DecodeWordList(*Counted(Item(0, "a") + Item(0, "b")).ptr, &out);
  out.Release();
  return out.size;
}

TEST(WordListTest, GrowsTheStatedSizeBeforeAWordThatHasFewerThan128BytesLeft) {
  EXPECT_EQ(SizeAfterTwoWords(131), 131u);
  EXPECT_EQ(SizeAfterTwoWords(130), 130u);
  EXPECT_EQ(SizeAfterTwoWords(129), 129u + 32u + 4096u);
}

TEST(WordListTest, GrowsASizeThatIsLessThan128FromTheFirstWordOn) {
  EXPECT_EQ(SizeAfterTwoWords(127), 127u + 31u + 4096u);
  EXPECT_EQ(SizeAfterTwoWords(0), 4096u);
}

TEST(WordListTest, WhiteSpaceIsSixBytes) {
  std::string white_space;
  for (int byte = 0; byte < 256; ++byte) {
    if (kestan::IsWhiteSpace(static_cast<char>(byte))) white_space += static_cast<char>(byte);
  }
  EXPECT_EQ(white_space, "\t\n\v\f\r ");
}

}  // namespace
}  // namespace kestan_tests
