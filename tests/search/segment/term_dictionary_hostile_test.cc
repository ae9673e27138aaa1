// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <string>

#include "search/files/numbers.h"
#include "search/segment/term_dictionary.h"
#include "tests/search/segment/dictionary_files.h"
#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

class TermDictionaryHostileTest : public testing::Test {
 protected:
  TermDictionaryHostileTest() {
    EXPECT_TRUE(WriteDictionary(terms_, path_).ok());
    good_ = kestan_tests::ReadFile(path_);
  }

  Result<TermDictionary> OpenBytes(const std::string& bytes) const {
    kestan_tests::WriteFile(path_, bytes);
    return OpenDictionary(path_);
  }

  // Expects every look-up to be right or to be refused.
  void ExpectNoWrongAnswer(const TermDictionary& dictionary) const {
    for (const auto& [term, facts] : terms_) {
      const auto found = dictionary.Find(term);
      if (!found.ok()) {
        EXPECT_EQ(found.status().code(), StatusCode::kDamaged);
        EXPECT_EQ(found.status().file(), path_);
      } else {
        ASSERT_TRUE(found->has_value());
        ASSERT_EQ(FactsOf(**found), facts);
      }
    }
    const Result<TermMap> all = ReadDictionary(dictionary);
    EXPECT_TRUE(!all.ok() || *all == terms_);
  }

  kestan_tests::TempDir dir_;
  std::string path_ = dir_ / "1.terms";
  TermMap terms_ = SomeTerms(200);
  std::string good_;
};

TEST_F(TermDictionaryHostileTest, EveryChangedByteIsNoticed) {
  for (std::size_t at = 0; at < good_.size(); ++at) {
    std::string bytes = good_;
    bytes[at] = static_cast<char>(bytes[at] ^ 1 << at % 8);
    const Result<TermDictionary> dictionary = OpenBytes(bytes);
    if (!dictionary.ok()) {
      const StatusCode code = dictionary.status().code();
      EXPECT_EQ(code, at >= 8 && at < 16 ? StatusCode::kVersion : StatusCode::kDamaged) << at;
      continue;
    }
    ExpectNoWrongAnswer(*dictionary);
    EXPECT_EQ(ReadDictionary(*dictionary).status().code(), StatusCode::kDamaged) << at;
  }
}

TEST_F(TermDictionaryHostileTest, EveryTruncationIsDamage) {
  for (std::size_t size = 0; size < good_.size(); ++size) {
    EXPECT_EQ(OpenBytes(good_.substr(0, size)).status().code(), StatusCode::kDamaged) << size;
  }
  EXPECT_EQ(OpenBytes(good_ + '\0').status().code(), StatusCode::kDamaged);
}

TEST_F(TermDictionaryHostileTest, AFileOfAnotherKindIsNamed) {
  const Status status = OpenBytes(std::string(1000, 'x')).status();
  EXPECT_EQ(status.ToString(), path_ + ": it is not a term dictionary");
}

// ---- Files whose checksums are right ----

// A dictionary of one block with these bytes.
std::string Forged(const std::string& block) {
  std::string bytes("KestTerm\2\0\0\0\0\0\0\0", 16);
  bytes += block;
  std::string index;
  AppendNumber(std::uint64_t{16}, &index);
  AppendChecksumOf(block, &index);
  AppendNumber(std::uint32_t{0}, &index);
  AppendNumber(std::uint64_t{16 + block.size()}, &index);
  AppendNumber(std::uint64_t{1}, &index);
  AppendNumber(std::uint32_t{1}, &index);
  AppendNumber(std::uint32_t{0}, &index);
  AppendNumber(std::uint64_t{0}, &index);
  AppendChecksumOf(index, &index);
  return bytes + index;
}

class TermDictionaryForgeryTest : public TermDictionaryHostileTest {
 protected:
  // Reads a dictionary of such a block in each way.
  //   Returns  whether each has noticed that it is damaged.
  bool IsRefused(const std::string& block) const {
    const Result<TermDictionary> dictionary = OpenBytes(Forged(block));
    if (!dictionary.ok()) return false;
    return ReadDictionary(*dictionary).status().code() == StatusCode::kDamaged &&
           dictionary->Find("zz").status().code() == StatusCode::kDamaged;
  }
};

TEST_F(TermDictionaryForgeryTest, AGoodBlockIsRead) {
  const Result<TermDictionary> dictionary = OpenBytes(Forged(std::string("\0\2ab\2\7", 6)));
  ASSERT_TRUE(dictionary.ok());
  EXPECT_EQ(ReadDictionary(*dictionary).status().code(), StatusCode::kDamaged);  // no offset
  const TermMap terms = {{"ab", {1, 5, 7}}};
  EXPECT_EQ(*ReadDictionary(*OpenBytes(Forged(std::string("\0\2ab\3\7\x0a", 7)))), terms);
}

TEST_F(TermDictionaryForgeryTest, EveryCutEntryIsDamage) {
  const std::string entry("\0\2ab\3\x87\1\x8a\1", 9);
  for (std::size_t size = 1; size < entry.size(); ++size) {
    EXPECT_TRUE(IsRefused(entry.substr(0, size))) << size;
  }
}

TEST_F(TermDictionaryForgeryTest, SharingMoreThanThereIsIsDamage) {
  EXPECT_TRUE(IsRefused(std::string("\1\2ab\3\7\x0a", 7)));
  const std::string first("\0\2ab\3\7\x0a", 7);
  EXPECT_TRUE(IsRefused(first + std::string("\3\1z\2\7", 5)));
  EXPECT_FALSE(IsRefused(first + std::string("\2\1z\2\7", 5)));
}

TEST_F(TermDictionaryForgeryTest, LengthsAndNumbersThatDoNotFitAreDamage) {
  const std::string huge = std::string(9, '\xff') + "\1";
  EXPECT_TRUE(IsRefused(huge + std::string("\2ab\3\7\x0a", 6)));
  EXPECT_TRUE(IsRefused(std::string(1, '\0') + huge + "ab\3\7\x0a"));
  EXPECT_TRUE(IsRefused(std::string("\0\2ab", 4) + huge + "\7\x0a"));
  EXPECT_TRUE(IsRefused(std::string("\0\2ab\3", 5) + huge + "\x0a"));
  EXPECT_TRUE(IsRefused(std::string("\0\2ab\3\7", 6) + huge + "\1"));
}

TEST_F(TermDictionaryForgeryTest, AnIndexThatPointsAnywhereIsDamage) {
  const std::string block("\0\2ab\3\7\x0a", 7);
  const std::string good = Forged(block);
  const std::size_t index = 16 + block.size();
  for (std::size_t at = index; at < good.size() - 8; ++at) {
    if (at >= index + 28 && at < index + 36) continue;  // how many terms there are
    for (const char byte : {'\1', '\x10', '\x7f', '\xff'}) {
      std::string bytes = good;
      if (bytes[at] == byte) continue;
      bytes[at] = byte;
      std::string checksum;
      AppendChecksumOf(std::string_view(bytes).substr(index, 20 + 24), &checksum);
      bytes.replace(bytes.size() - 8, 8, checksum);
      const Result<TermDictionary> dictionary = OpenBytes(bytes);
      if (!dictionary.ok()) continue;
      const bool in_separator = at >= index + 16 && at < index + 20;
      EXPECT_EQ(ReadDictionary(*dictionary).ok(), in_separator) << at - index;
    }
  }
}

}  // namespace
}  // namespace kestan::search
