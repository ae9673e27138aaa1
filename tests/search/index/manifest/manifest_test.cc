// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/manifest/manifest.h"

#include <gtest/gtest.h>
#include <kestan/storage/checksum/crc64.h>

#include <filesystem>
#include <set>
#include <string>

#include "search/index/manifest/manifest_text.h"
#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

SegmentInfo SegmentOf(std::uint64_t number) {
  SegmentInfo info;
  info.number = number;
  info.documents = 1000;
  info.segment = {123456, 0x0123456789abcdef};
  info.terms = {4567, 0xffffffffffffffff};
  info.table = {89, 0};
  return info;
}

Manifest Example() {
  Manifest manifest;
  manifest.generation = 12;
  manifest.next_segment = 18;
  manifest.properties = {{"roots", "/home/a b\n/home/c"}, {"", "\\ \xff"}, {"a key", "1"}};
  manifest.segments = {SegmentOf(3), SegmentOf(17)};
  manifest.segments[1].removed = 2;
  manifest.segments[1].edit_number = 4;
  manifest.segments[1].edits = {77, 5};
  return manifest;
}

// Returns `lines` with a checksum that is right.
std::string Sealed(std::string lines) {
  Crc64 checksum;
  checksum.Add(lines);
  lines += "checksum ";
  AppendHex(checksum.Value(), &lines);
  return lines + "\n";
}

std::string Head() { return "kestan-index 1\ngeneration 12\nnext-segment 18\npositions yes\n"; }

std::string SegmentLine(const std::string& start) {
  return start +
         " segment 1 0000000000000001 terms 1 0000000000000001 documents 1 0000000000000001";
}

StatusCode CodeOf(const std::string& bytes) { return Manifest::Decode(bytes).status().code(); }

TEST(ManifestTest, IsTextThatAPersonCanRead) {
  const std::string text = Example().Encode();
  EXPECT_EQ(text.substr(0, text.find("checksum ")),
            "kestan-index 1\n"
            "generation 12\n"
            "next-segment 18\n"
            "positions yes\n"
            "property  \\x5c\\x20\\xff\n"
            "property a\\x20key 1\n"
            "property roots /home/a\\x20b\\x0a/home/c\n"
            "segment 3 documents 1000 removed 0 segment 123456 0123456789abcdef"
            " terms 4567 ffffffffffffffff documents 89 0000000000000000\n"
            "segment 17 documents 1000 removed 2 segment 123456 0123456789abcdef"
            " terms 4567 ffffffffffffffff documents 89 0000000000000000"
            " edits 4 77 0000000000000005\n");
}

TEST(ManifestTest, IsReadAsItWasWritten) {
  const Result<Manifest> read = Manifest::Decode(Example().Encode());
  ASSERT_TRUE(read.ok()) << read.status().ToString();
  EXPECT_EQ(read->generation, 12u);
  EXPECT_EQ(read->next_segment, 18u);
  EXPECT_TRUE(read->with_positions);
  EXPECT_EQ(read->properties, Example().properties);
  ASSERT_EQ(read->segments.size(), 2u);
  EXPECT_EQ(read->segments[1].number, 17u);
  EXPECT_EQ(read->segments[1].removed, 2u);
  EXPECT_EQ(read->segments[1].edits.bytes, 77u);
  EXPECT_EQ(read->Encode(), Example().Encode());
}

TEST(ManifestTest, WithoutAnythingIsReadToo) {
  Manifest empty;
  empty.with_positions = false;
  const Result<Manifest> read = Manifest::Decode(empty.Encode());
  ASSERT_TRUE(read.ok());
  EXPECT_FALSE(read->with_positions);
  EXPECT_TRUE(read->segments.empty());
}

TEST(ManifestTest, EveryCutIsDamage) {
  const std::string text = Example().Encode();
  for (std::size_t size = 0; size < text.size(); ++size) {
    EXPECT_EQ(CodeOf(text.substr(0, size)), StatusCode::kDamaged) << size;
  }
}

TEST(ManifestTest, EveryChangedByteIsSeen) {
  const std::string text = Example().Encode();
  for (std::size_t i = 0; i < text.size(); ++i) {
    for (int change = 1; change < 256; ++change) {
      std::string changed = text;
      changed[i] = static_cast<char>(changed[i] ^ change);
      const StatusCode code = CodeOf(changed);
      EXPECT_TRUE(code == StatusCode::kDamaged || code == StatusCode::kVersion) << i;
    }
  }
}

TEST(ManifestTest, EveryAddedOrMissingByteIsDamage) {
  const std::string text = Example().Encode();
  for (std::size_t i = text.find('\n'); i < text.size(); ++i) {
    EXPECT_EQ(CodeOf(std::string(text).erase(i, 1)), StatusCode::kDamaged) << i;
    if (i == text.find('\n')) continue;  // version 10
    EXPECT_EQ(CodeOf(std::string(text).insert(i, 1, '0')), StatusCode::kDamaged) << i;
  }
  EXPECT_EQ(CodeOf(text + "\n"), StatusCode::kDamaged);
}

TEST(ManifestTest, OfAnotherVersionSaysSo) {
  const Result<Manifest> read = Manifest::Decode("kestan-index 2\nwhatever comes\n");
  EXPECT_EQ(read.status().code(), StatusCode::kVersion);
  EXPECT_EQ(read.status().message(), "it is of version 2; this program reads version 1");
  EXPECT_EQ(CodeOf("kestan-index 1x\n"), StatusCode::kDamaged);
  EXPECT_EQ(CodeOf("kestan-index 12345678901\n"), StatusCode::kDamaged);
}

TEST(ManifestTest, LinesWithARightChecksumAreReadStrictly) {
  const std::string good = SegmentLine("segment 1 documents 9 removed 0");
  EXPECT_EQ(CodeOf(Sealed(Head())), StatusCode::kOk);
  EXPECT_EQ(CodeOf(Sealed(Head() + good + "\n")), StatusCode::kOk);
  for (const std::string& line :
       {good + " ", good + "\n" + good,                      // a number comes twice
        SegmentLine("segment 0 documents 9 removed 0"),      // none has it
        SegmentLine("segment 18 documents 9 removed 0"),     // the next one's
        SegmentLine("segment 01 documents 9 removed 0"),     // spelled in another way
        SegmentLine("segment 1 documents 0 removed 0"),      // without documents
        SegmentLine("segment 1 documents 65536 removed 0"),  // more than there are codes
        SegmentLine("segment 1 documents 9 removed 10"),     // more than there are
        SegmentLine("segment 1 documents 9 removed 1"),      // without edits that say which
        good + " edits 0 1 0000000000000001",                // numbered like none
        good + " edits 1 1 1", std::string("property x"), std::string("property x \\x4"),
        std::string("property b 1\nproperty a 1"),  // out of order
        std::string("property a 1\nproperty a 1"), std::string(), std::string("more")}) {
    EXPECT_EQ(CodeOf(Sealed(Head() + line + "\n")), StatusCode::kDamaged) << line;
  }
}

TEST(ManifestTest, NumbersThatPass64BitsAreDamage) {
  const std::string rest = "\nnext-segment 1\npositions no\n";
  const auto code_of = [&rest](const std::string& number) {
    return CodeOf(Sealed("kestan-index 1\ngeneration " + number + rest));
  };
  EXPECT_EQ(code_of("18446744073709551615"), StatusCode::kOk);
  EXPECT_EQ(code_of("18446744073709551616"), StatusCode::kDamaged);
  EXPECT_EQ(code_of("99999999999999999999"), StatusCode::kDamaged);
}

TEST(ManifestFileTest, IsReplacedAndRead) {
  const kestan_tests::TempDir folder;
  const std::string path = folder / "index";
  std::filesystem::create_directory(path);
  EXPECT_FALSE(IsIndexFolder(path));
  EXPECT_EQ(ReadManifest(path).status().code(), StatusCode::kNotFound);
  ASSERT_TRUE(WriteManifest(path, Manifest()).ok());
  ASSERT_TRUE(WriteManifest(path, Example()).ok());
  EXPECT_TRUE(IsIndexFolder(path));
  EXPECT_EQ(ReadManifest(path)->Encode(), Example().Encode());
}

TEST(ManifestFileTest, NewFilesAreThoseThatWereNotNamedBefore) {
  using Files = std::vector<std::string>;
  Manifest next = Example();
  EXPECT_EQ(NewFiles("f", Example(), next), Files());
  next.segments[0].edit_number = 1;
  next.segments[1] = SegmentOf(18);
  EXPECT_EQ(NewFiles("f", Example(), next),
            (Files{"f/18.documents", "f/18.segment", "f/18.terms", "f/3-1.edits"}));
  EXPECT_EQ(NewFiles("f", next, Manifest()), Files());
}

TEST(ManifestFileTest, DamageNamesTheFile) {
  const kestan_tests::TempDir folder;
  const std::string path = folder / "";
  kestan_tests::WriteFile(ManifestPath(path), "kestan");
  const Result<Manifest> read = ReadManifest(path);
  EXPECT_EQ(read.status().code(), StatusCode::kDamaged);
  EXPECT_EQ(read.status().file(), ManifestPath(path));
}

TEST(ManifestFileTest, TooLargePropertiesAreRefused) {
  const kestan_tests::TempDir folder;
  Manifest manifest;
  manifest.properties["key"] = std::string(kMaxManifestBytes, 'x');
  EXPECT_EQ(WriteManifest(folder / "", manifest).code(), StatusCode::kInvalidArgument);
  EXPECT_FALSE(IsIndexFolder(folder / ""));
}

TEST(ManifestFileTest, FilesOfSegmentsAreKnownByTheirNames) {
  for (const char* name : {"1.segment", "17.terms", "17.documents", "17-3.edits"}) {
    EXPECT_TRUE(IsSegmentFileName(name)) << name;
  }
  for (const char* name : {"MANIFEST", ".segment", "1.segment.new", "x1.terms", "17.edits",
                           "-3.edits", "17-.edits", "1-2.terms", "1", "", "17-3-4.edits"}) {
    EXPECT_FALSE(IsSegmentFileName(name)) << name;
  }
}

TEST(ManifestFileTest, OnlyFilesOfSegmentsThatAreNotNamedAreRemoved) {
  const kestan_tests::TempDir folder;
  for (const char* name : {"3.segment", "3.terms", "3.documents", "3-1.edits", "17.segment",
                           "17.terms", "17.documents", "17-3.edits", "17-4.edits", "18.terms",
                           "notes.txt", "MANIFEST", "MANIFEST.new"}) {
    kestan_tests::WriteFile(folder / name, "");
  }
  ASSERT_TRUE(RemoveUnnamedFiles(folder / "", Example()).ok());
  std::set<std::string> left;
  for (const auto& file : std::filesystem::directory_iterator(folder / "")) {
    left.insert(file.path().filename().string());
  }
  EXPECT_EQ(left,
            (std::set<std::string>{"3.segment", "3.terms", "3.documents", "17.segment", "17.terms",
                                   "17.documents", "17-4.edits", "notes.txt", "MANIFEST"}));
}

}  // namespace
}  // namespace kestan::search
