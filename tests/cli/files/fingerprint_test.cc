// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/fingerprint.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan_cli {
namespace {

const std::string kHash = "00112233445566778899aabbccddeeff";

Fingerprint Example() { return {{1234, 1700000000, 5}, kHash}; }

std::string ExampleLine() { return "size=1234 mtime=1700000000.000000005 hash=" + kHash; }

TEST(FingerprintTest, IsOneLine) { EXPECT_EQ(WithFingerprint("", Example()), ExampleLine()); }

TEST(FingerprintTest, IsReadAsItWasWritten) {
  const auto found = FingerprintIn(ExampleLine());
  ASSERT_TRUE(found.has_value());
  EXPECT_EQ(found->state, Example().state);
  EXPECT_EQ(found->hash, kHash);
}

TEST(FingerprintTest, TimesBefore1970AndHugeSizesAreKept) {
  const Fingerprint odd{{0xffffffffffffffffu, -5, 999999999}, kHash};
  const auto found = FingerprintIn(WithFingerprint("", odd));
  ASSERT_TRUE(found.has_value());
  EXPECT_EQ(found->state, odd.state);
}

TEST(FingerprintTest, ReadingIsKeptWhereItIsNotThatOfTheName) {
  Fingerprint odd = Example();
  odd.reading = "0123456789abcdef";
  EXPECT_EQ(WithFingerprint("", odd), ExampleLine() + " read=0123456789abcdef");
  EXPECT_EQ(FingerprintIn(WithFingerprint("", odd))->reading, "0123456789abcdef");
  EXPECT_EQ(FingerprintIn(ExampleLine())->reading, "");
  EXPECT_FALSE(FingerprintIn(ExampleLine() + " read=0123456789abcde").has_value());
  EXPECT_FALSE(FingerprintIn(ExampleLine() + " read=0123456789abcdef0").has_value());
}

TEST(FingerprintTest, PartsOfFilesAndMailHaveMore) {
  Fingerprint part = Example();
  part.container_bytes = 5;
  part.offset = 70;
  part.container = FileState{8, -9, 10};
  part.mail = {-11, "Ann \"A\\\" <a@b>", "\u00fc"};
  const std::string line = ExampleLine() +
                           " in=5 at=70 of=8,-9.000000010 date=-11 "
                           "from=\"Ann \\\"A\\\\\\\" <a@b>\" to=\"\u00fc\"";
  EXPECT_EQ(WithFingerprint("", part), line);
  const auto read = FingerprintIn(line + "\nmine");
  ASSERT_TRUE(read.has_value());
  EXPECT_EQ(read->container_bytes, 5u);
  EXPECT_EQ(read->offset, 70u);
  EXPECT_EQ(read->container, part.container);
  EXPECT_EQ(read->mail.date, -11);
  EXPECT_EQ(read->mail.from, part.mail.from);
  EXPECT_EQ(read->mail.to, part.mail.to);
  EXPECT_EQ(WithFingerprint(line + "\nmine", Example()), ExampleLine() + "\nmine");
}

TEST(FingerprintTest, FieldsThatAreCutAreNone) {
  for (const char* end :
       {" in=5", " in=5 at=", " in=x at=1", " of=8", " of=8,1", " date=", " date=x", " from=\"a",
        " from=a", " from=\"a\\", " to=\"a\" from=\"b\"", " other=1"}) {
    EXPECT_FALSE(FingerprintIn(ExampleLine() + end).has_value()) << end;
  }
}

TEST(FingerprintTest, NoLineFeedComesFromAHeader) {
  Fingerprint mail = Example();
  mail.mail.from = "a\nb\tc";
  EXPECT_EQ(WithFingerprint("", mail), ExampleLine() + " from=\"a b c\"");
}

TEST(FingerprintTest, ContainerIsTheStartOfTheName) {
  Fingerprint part = Example();
  EXPECT_EQ(ContainerOf("d/box#1", part), "");
  part.container_bytes = 5;
  EXPECT_EQ(ContainerOf("d/box#1", part), "d/box");
  EXPECT_EQ(ContainerOf("d/box", part), "");
  EXPECT_EQ(ContainerOf("d/boxes#1", part), "");
}

TEST(FingerprintTest, UsersTextStaysBelow) {
  EXPECT_EQ(WithFingerprint("my\nnotes", Example()), ExampleLine() + "\nmy\nnotes");
}

TEST(FingerprintTest, NewFingerprintReplacesTheOldAndNothingElse) {
  const std::string old = WithFingerprint("my\nnotes", {{1, 2, 3}, kHash});
  EXPECT_EQ(WithFingerprint(old, Example()), ExampleLine() + "\nmy\nnotes");
  EXPECT_EQ(WithFingerprint(ExampleLine(), Example()), ExampleLine());
  EXPECT_EQ(WithFingerprint(ExampleLine() + "\n", Example()), ExampleLine());
}

TEST(FingerprintTest, FingerprintBelowTheFirstLineIsTheUsers) {
  EXPECT_FALSE(FingerprintIn("note\n" + ExampleLine()).has_value());
}

TEST(FingerprintTest, EveryTruncationIsNone) {
  const std::string line = ExampleLine();
  for (std::size_t bytes = 0; bytes < line.size(); ++bytes) {
    EXPECT_FALSE(FingerprintIn(line.substr(0, bytes)).has_value()) << bytes;
  }
}

TEST(FingerprintTest, OtherLinesAreNone) {
  EXPECT_FALSE(FingerprintIn(ExampleLine() + " ").has_value());
  EXPECT_FALSE(FingerprintIn(" " + ExampleLine()).has_value());
  EXPECT_FALSE(FingerprintIn("size=x mtime=1.0 hash=" + kHash).has_value());
  EXPECT_FALSE(FingerprintIn("size=99999999999999999999 mtime=1.0 hash=" + kHash).has_value());
}

std::string StateIn(const std::string& record) {
  const auto state = FileStateIn(record);
  if (!state) return "nothing";
  return std::to_string(state->bytes) + " " + std::to_string(state->mtime_seconds) + " " +
         std::to_string(state->mtime_nanoseconds);
}

TEST(FileStateTest, IsSizeAndTime) {
  EXPECT_EQ(StateIn("size=12 mtime=1700000000.000000345"), "12 1700000000 345");
  EXPECT_EQ(StateIn("size=0 mtime=-1.5 hash=xyz\n"), "0 -1 5");
  EXPECT_EQ(StateIn("size=5000000000 mtime=1.2\n"), "5000000000 1 2");
  EXPECT_EQ(StateIn(ExampleLine() + "\nmy notes"), "1234 1700000000 5");
}

TEST(FileStateTest, OtherRecordsHaveNone) {
  for (const char* record : {"", "size=", "size=12", "size=12 mtime=", "size=12 mtime=3",
                             "size=12 mtime=3.", "size=12 mtime=3.4x", "size=-1 mtime=3.4",
                             "mtime=3.4 size=12", " size=1 mtime=3.4", "hello"}) {
    EXPECT_EQ(StateIn(record), "nothing") << record;
  }
}

std::string HashOf(const std::string& text) {
  ContentHash hash;
  hash.Add(text);
  return hash.Digits();
}

TEST(ContentHashTest, IsXxh3) {
  // The value that the algorithm's description gives for no input.
  EXPECT_EQ(HashOf(""), "99aa06d3014798d86001c324468d497f");
}

TEST(ContentHashTest, ChunksDoNotMatter) {
  ContentHash hash;
  hash.Add("cat ");
  hash.Add("");
  hash.Add("dog");
  EXPECT_EQ(hash.Digits(), HashOf("cat dog"));
  EXPECT_NE(hash.Digits(), HashOf("cat dot"));
}

TEST(ContentHashTest, SameContentHasSameSizeToo) {
  EXPECT_TRUE(HaveSameContent({{1, 2, 3}, kHash}, {{1, 5, 6}, kHash}));
  EXPECT_FALSE(HaveSameContent({{1, 2, 3}, kHash}, {{2, 2, 3}, kHash}));
  EXPECT_FALSE(HaveSameContent({{1, 2, 3}, kHash}, {{1, 2, 3}, "x"}));
}

}  // namespace
}  // namespace kestan_cli
