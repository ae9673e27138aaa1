// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/segment/edits.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <optional>
#include <string>

#include "search/files/numbers.h"

namespace kestan::search {
namespace {

constexpr auto kTitle = DocumentField::kTitle;
constexpr auto kHostData = DocumentField::kHostData;

// Some edits of a segment of 20 documents.
Edits SomeEdits() {
  Edits edits(20);
  for (const Code code : {Code{1}, Code{2}, Code{7}, Code{20}}) edits.Remove(code);
  edits.Rename(3, "new name", 1'700'000'000);
  edits.SetField(3, kTitle, "a title");
  edits.SetField(19, kHostData, "");
  return edits;
}

bool operator==(const DocumentEdit& left, const DocumentEdit& right) {
  return left.name == right.name && left.renamed == right.renamed && left.fields == right.fields;
}

// Returns whether both say the same of each document.
bool Same(const Edits& left, const Edits& right, Code documents) {
  if (left.removed_count() != right.removed_count() || left.empty() != right.empty()) return false;
  for (unsigned i = 1; i <= documents; ++i) {
    const auto code = static_cast<Code>(i);
    if (left.IsRemoved(code) != right.IsRemoved(code)) return false;
    const DocumentEdit* const a = left.EditOf(code);
    const DocumentEdit* const b = right.EditOf(code);
    if ((a == nullptr) != (b == nullptr) || (a != nullptr && !(*a == *b))) return false;
    if (a != nullptr && a->name && left.FindRenamed(*a->name) != right.FindRenamed(*a->name)) {
      return false;
    }
  }
  return true;
}

TEST(EditsTest, NewOnesAreEmpty) {
  const Edits edits(5);
  EXPECT_TRUE(edits.empty());
  EXPECT_EQ(edits.removed_count(), 0u);
  EXPECT_FALSE(edits.IsRemoved(5));
  EXPECT_EQ(edits.EditOf(5), nullptr);
  EXPECT_EQ(edits.FindRenamed("a"), std::nullopt);
}

TEST(EditsTest, ARemovedDocumentIsRemovedOnceAndHasNoOtherEdits) {
  Edits edits(5);
  edits.Rename(5, "a", 1);
  EXPECT_FALSE(edits.empty());
  edits.Remove(5);
  edits.Remove(5);
  EXPECT_TRUE(edits.IsRemoved(5));
  EXPECT_EQ(edits.removed_count(), 1u);
  EXPECT_EQ(edits.EditOf(5), nullptr);
  EXPECT_EQ(edits.FindRenamed("a"), std::nullopt);
  EXPECT_FALSE(edits.empty());
}

TEST(EditsTest, TheLastNameCounts) {
  Edits edits(5);
  edits.Rename(2, "a", 1);
  edits.Rename(2, "b", 2);
  edits.Rename(3, "a", 3);
  EXPECT_EQ(edits.FindRenamed("a"), Code{3});
  EXPECT_EQ(edits.FindRenamed("b"), Code{2});
  EXPECT_EQ(edits.EditOf(2)->name, "b");
  EXPECT_EQ(edits.EditOf(2)->renamed, 2u);
}

TEST(EditsTest, AFieldThatWasTakenAwayIsNotOneThatWasLeft) {
  Edits edits(5);
  edits.SetField(1, kTitle, "x");
  edits.SetField(1, kTitle, "");
  EXPECT_EQ(edits.EditOf(1)->fields[0], "");
  EXPECT_EQ(edits.EditOf(1)->fields[1], std::nullopt);
  EXPECT_EQ(edits.EditOf(1)->name, std::nullopt);
}

TEST(EditsTest, BytesSayWhatWasEdited) {
  EXPECT_TRUE(Same(*Edits::Decode(SomeEdits().Encode(), 20), SomeEdits(), 20));
  EXPECT_TRUE(Same(*Edits::Decode(Edits(0).Encode(), 0), Edits(0), 0));
  Edits all(kMaxCode);
  for (unsigned code = 1; code <= kMaxCode; ++code) all.Remove(static_cast<Code>(code));
  EXPECT_LT(all.Encode().size(), 40u);  // one run
  EXPECT_TRUE(Same(*Edits::Decode(all.Encode(), kMaxCode), all, kMaxCode));
}

TEST(EditsTest, EditsOfAnotherSegmentAreDamage) {
  for (const std::size_t documents : {0U, 19U, 21U, 65535U}) {
    EXPECT_EQ(Edits::Decode(SomeEdits().Encode(), documents).status().code(), StatusCode::kDamaged);
  }
}

TEST(EditsTest, EveryChangedByteIsNoticed) {
  const std::string good = SomeEdits().Encode();
  for (std::size_t at = 0; at < good.size(); ++at) {
    for (int change = 1; change < 256; ++change) {
      std::string bytes = good;
      bytes[at] = static_cast<char>(bytes[at] ^ change);
      const Status status = Edits::Decode(bytes, 20).status();
      EXPECT_EQ(status.code(), at >= 8 && at < 16 ? StatusCode::kVersion : StatusCode::kDamaged);
    }
  }
}

TEST(EditsTest, EveryTruncationIsDamage) {
  const std::string good = SomeEdits().Encode();
  for (std::size_t size = 0; size < good.size(); ++size) {
    EXPECT_EQ(Edits::Decode(good.substr(0, size), 20).status().code(), StatusCode::kDamaged);
  }
}

// ---- Bytes whose checksum is right ----

std::string Forged(const std::string& content) {
  std::string bytes("KestEdit\1\0\0\0\0\0\0\0", 16);
  bytes += content;
  AppendChecksumOf(bytes, &bytes);
  return bytes;
}

bool IsRead(const std::string& content) {
  const Result<Edits> edits = Edits::Decode(Forged(content), 20);
  EXPECT_TRUE(edits.ok() || edits.status().code() == StatusCode::kDamaged);
  return edits.ok();
}

TEST(EditsTest, RemovedCodesThatAreNotThereAreDamage) {
  EXPECT_TRUE(IsRead(std::string("\x14\1\x13\1\0", 5)));   // the last one
  EXPECT_FALSE(IsRead(std::string("\x14\1\x14\1\0", 5)));  // one after it
  EXPECT_FALSE(IsRead(std::string("\x14\2\x13\2\0", 5)));
  EXPECT_FALSE(IsRead(std::string("\x14\1\0\2\0", 5)));      // more than announced
  EXPECT_FALSE(IsRead(std::string("\x14\1\0\0\0", 5)));      // an empty run
  EXPECT_FALSE(IsRead(std::string("\x14\x15\0\x15\0", 5)));  // all and one more
  EXPECT_FALSE(IsRead(std::string("\x14\1\xff\xff\xff\xff\x0f\1\0", 9)));
}

TEST(EditsTest, EditsThatMakeNoSenseAreDamage) {
  EXPECT_TRUE(IsRead(std::string("\x14\0\1\x14\2\1t", 7)));             // title of the last one
  EXPECT_FALSE(IsRead(std::string("\x14\0\1\x15\2\1t", 7)));            // of one after it
  EXPECT_FALSE(IsRead(std::string("\x14\0\1\0\2\1t", 7)));              // of none
  EXPECT_FALSE(IsRead(std::string("\x14\0\1\x14\2\2t", 7)));            // longer than the file
  EXPECT_FALSE(IsRead(std::string("\x14\0\1\x14\0", 5)));               // nothing changed
  EXPECT_FALSE(IsRead(std::string("\x14\0\1\x14\x10\1t", 7)));          // a field that is none
  EXPECT_FALSE(IsRead(std::string("\x14\0\1\x14\2\1tt", 8)));           // something follows
  EXPECT_FALSE(IsRead(std::string("\x14\1\0\1\1\1\2\1t", 9)));          // of a removed document
  EXPECT_TRUE(IsRead(std::string("\x14\0\2\1\1\1a\0\1\1\1b\0", 13)));   // two new names
  EXPECT_FALSE(IsRead(std::string("\x14\0\2\1\1\1a\0\1\1\1a\0", 13)));  // which are the same
}

TEST(EditsTest, AnyContentIsReadOrRefused) {
  const bool holds = rc::check("what is read is what is written", [] {
    const auto numbers = *rc::gen::container<std::string>(rc::gen::inRange<char>(0, 21));
    const std::string bytes = Forged("\x14" + numbers);
    const Result<Edits> edits = Edits::Decode(bytes, 20);
    if (edits.ok()) RC_ASSERT(Same(*Edits::Decode(edits->Encode(), 20), *edits, 20));
  });
  EXPECT_TRUE(holds);
}

TEST(EditsTest, RandomEditsComeBack) {
  const bool holds = rc::check("decoding what was encoded", [] {
    const Code documents = *rc::gen::inRange<Code>(1, 300);
    Edits edits(documents);
    const auto steps = *rc::gen::inRange(0, 100);
    for (int i = 0; i < steps; ++i) {
      const Code code = *rc::gen::inRange<Code>(1, static_cast<Code>(documents + 1));
      const int kind = *rc::gen::inRange(0, 3);
      const auto text = *rc::gen::arbitrary<std::string>();
      if (kind == 0) edits.Remove(code);
      if (edits.IsRemoved(code)) continue;
      if (kind == 1 && !edits.FindRenamed(text))
        edits.Rename(code, text, *rc::gen::arbitrary<std::uint32_t>());
      if (kind == 2)
        edits.SetField(code, DocumentField{*rc::gen::inRange<std::uint8_t>(0, 3)}, text);
    }
    const Result<Edits> read = Edits::Decode(edits.Encode(), documents);
    RC_ASSERT(read.ok() && Same(*read, edits, documents));
  });
  EXPECT_TRUE(holds);
}

}  // namespace
}  // namespace kestan::search
