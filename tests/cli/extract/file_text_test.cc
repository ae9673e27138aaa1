// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/file_text.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/extract/document/words.h"
#include "cli/files/skip.h"
#include "tests/cli/command_test.h"
#include "tests/support/packed.h"

namespace kestan_cli {
namespace {

using std::string_literals::operator""s;

class FileTextTest : public kestan_tests::CommandTest {
 protected:
  // Makes a document of the file `name`, with the words that an index finds in it, or of the reason
  // why not.
  Document Read(const std::string& name) {
    try {
      Document document = DocumentOf(LoadFile(Path(name), rules_), rules_);
      document.words = WordsIn(document.text);
      return document;
    } catch (const SkipFile& skip) {
      return {"", "", "", KeyOf(skip.kind()) + ": " + skip.what()};
    }
  }

  Document Read(const std::string& name, const std::string& bytes) {
    Write(name, bytes);
    return Read(name);
  }

  const Converters converters_{{"cat=cat {}", "not=false {}", "touch=touch -d 2001-01-01 {}"}};
  ReadingRules rules_{converters_, {}, 100, {}};
};

TEST_F(FileTextTest, TextHasItsFirstLineAsTitle) {
  const Document document = Read("a", "One\nTwo\n");
  EXPECT_EQ(document.title, "One");
  EXPECT_EQ(document.summary, "Two");
  EXPECT_EQ(document.words, "one two ");
}

TEST_F(FileTextTest, MarkdownHasItsHeading) {
  const Document document = Read("a.MD", "badge\n# One\nTwo");
  EXPECT_EQ(document.title, "One");
  EXPECT_EQ(document.summary, "Two");
}

TEST_F(FileTextTest, HtmlHasItsTitleElement) {
  const Document document = Read("a.html", "<title>One</title><p>Two<script>x</script>");
  EXPECT_EQ(document.title, "One");
  EXPECT_EQ(document.summary, "Two");
  EXPECT_EQ(document.words, "one two ");
}

TEST_F(FileTextTest, HtmlWithoutATitleHasItsFirstLine) {
  EXPECT_EQ(Read("a.htm", "<h1>Head</h1><p>Two").title, "Head");
}

TEST_F(FileTextTest, TagsInTextAreText) { EXPECT_EQ(Read("a.txt", "<p>x").words, "p x "); }

TEST_F(FileTextTest, Utf16IsReadInEveryFormat) {
  EXPECT_EQ(Read("a.txt", "\xff\xfez\0\xfc\0r\0"s).words, "zur ");
  EXPECT_EQ(Read("a.html", "\xff\xfe<\0p\0>\0\xfc\0"s).words, "u ");
}

TEST_F(FileTextTest, MarkOfUtf16GoesBeforeDeclarations) {
  const std::string page = "<meta charset=koi8-r><p>x";
  std::string bytes = "\xff\xfe";
  for (const char each : page) bytes += {each, '\0'};
  EXPECT_EQ(Read("a.html", bytes + "\xfc\0"s).words, "xu ");
}

TEST_F(FileTextTest, Utf16OfAnOddLengthIsReadAsFarAsItGoesWithANote) {
  for (const char* name : {"a.txt", "a.html", "a.cat"}) {
    const Document document = Read(name, "\xff\xfez\0x"s);
    EXPECT_EQ(document.words, "z ") << name;
    EXPECT_EQ(document.note, "its UTF-16 has half a character too much or too little") << name;
    EXPECT_EQ(Read(name, "\xff\xfez\0"s).note, "") << name;
  }
}

TEST_F(FileTextTest, Utf16NeedsNoMark) {
  EXPECT_EQ(Read("a.txt", "z\0\xfc\0r\0"s).text, "z\u00fcr");
  EXPECT_EQ(Read("b.txt", "\0z\0\xfc\0r"s).text, "z\u00fcr");
  EXPECT_EQ(Read("a.html", "<\0p\0>\0\xfc\0"s).text, "\u00fc\n");
}

TEST_F(FileTextTest, BinaryFilesAreSkippedInEveryFormat) {
  EXPECT_EQ(Read("a", "text\0"s).words, "binary: binary file");
  EXPECT_EQ(Read("a.html", "<p>text\0"s).words, "binary: binary file");
  EXPECT_EQ(Read("a.txt", "\xff\xfe\0\0"s).words, "binary: binary file");
}

TEST_F(FileTextTest, FileMayBeAsLargeAsTheRulesSay) {
  EXPECT_EQ(Read("a", std::string(50, 'x') + " " + std::string(49, 'y')).words.size(), 101u);
  EXPECT_EQ(Read("a", std::string(101, 'x')).words, "too_large: larger than 100 bytes");
}

TEST_F(FileTextTest, LargeBinaryFileIsBinary) {
  EXPECT_EQ(Read("a", std::string(50, 'x') + std::string(500, '\0')).words, "binary: binary file");
}

TEST_F(FileTextTest, MissingFileIsUnreadable) {
  EXPECT_EQ(Read("gone").words, "unreadable: no such file or folder");
}

TEST_F(FileTextTest, ConverterMakesTheText) {
  const Document document = Read("a.cat", "One\nTwo\n");
  EXPECT_EQ(document.title, "One");
  EXPECT_EQ(document.summary, "Two");
  EXPECT_EQ(document.words, "one two ");
}

TEST_F(FileTextTest, SizeOfAFileToConvertDoesNotMatter) {
  EXPECT_EQ(Read("a.cat", std::string(3000, ' ') + "x").words, "x ");
}

TEST_F(FileTextTest, BinaryOutputIsSkipped) {
  EXPECT_EQ(Read("a.cat", "a\0"s).words, "binary: binary after conversion");
}

TEST_F(FileTextTest, FailedConversionIsSkipped) {
  EXPECT_EQ(Read("a.not", "text").words, "conversion: false ended with status 1");
}

TEST_F(FileTextTest, FileThatChangesWhileItIsConvertedIsSkipped) {
  EXPECT_EQ(Read("a.touch", "text").words, "changing: changed while it was converted");
}

TEST_F(FileTextTest, TextInAFileNamedLikeAnotherFormatIsText) {
  EXPECT_EQ(Read("a.pdf", "plain text").words, "plain text ");
}

using kestan_tests::Packed;

TEST_F(FileTextTest, CompressedFileIsReadByItsInnerName) {
  EXPECT_EQ(Read("a.html.gz", Packed("<title>One</title><p>Two")).title, "One");
  EXPECT_EQ(Read("a.md.xz", Packed("badge\n# One\n", "xz")).title, "One");
  EXPECT_EQ(Read("changelog.Debian.zst", Packed("One", "zstd")).text, "One");
  EXPECT_EQ(Read("ls.1.bz2", Packed(".TH LS 1\n.SH NAME\nls \\- list\n", "bzip2")).title,
            "ls(1) - list");
}

TEST_F(FileTextTest, TextInAFileNamedLikeACompressedOneIsText) {
  EXPECT_EQ(Read("a.gz", "plain text").words, "plain text ");
}

TEST_F(FileTextTest, LimitsHoldForWhatIsUnpacked) {
  EXPECT_EQ(Read("a.gz", Packed(std::string(100, 'x'))).text.size(), 100u);
  EXPECT_EQ(Read("a.gz", Packed(std::string(101, 'x'))).words,
            "too_large: unpacks to more than 100 bytes");
}

TEST_F(FileTextTest, CompressedBinaryFileIsBinary) {
  EXPECT_EQ(Read("a.gz", Packed("text\0"s)).words, "binary: binary file");
  EXPECT_EQ(Read("a.gz", Packed("\xff\xfez\0"s)).words, "z ");
}

TEST_F(FileTextTest, BrokenCompressedFileIsUnreadable) {
  const std::string packed = Packed("some text to be cut");
  EXPECT_EQ(Read("a.gz", packed.substr(0, packed.size() - 12)).words.rfind("unreadable: ", 0), 0u);
}

TEST_F(FileTextTest, ConverterReadsWhatWasUnpacked) {
  EXPECT_EQ(Read("a.cat.gz", Packed("One\nTwo")).words, "one two ");
  EXPECT_EQ(Read("a.not.gz", Packed("text")).words, "conversion: false ended with status 1");
}

TEST_F(FileTextTest, ConverterForCompressedFilesGoesFirst) {
  const Converters converters{{"gz=wc -c {}"}};
  const ReadingRules rules{converters, {}, 100, {}};
  const std::string packed = Packed("text");
  Write("a.txt.gz", packed);
  EXPECT_EQ(DocumentOf(LoadFile(Path("a.txt.gz"), rules), rules).text,
            std::to_string(packed.size()) + " " + Path("a.txt.gz") + "\n");
}

TEST_F(FileTextTest, CompressedFilesAreReadAlikeIfWhatIsInThemIs) {
  Write("a.html.gz", Packed("<p>x"));
  const LoadedFile file = LoadFile(Path("a.html.gz"), rules_);
  EXPECT_EQ(file.fingerprint.reading, "");
  EXPECT_TRUE(IsReadAlike(file, "b.htm.gz", file.fingerprint, rules_));
  EXPECT_FALSE(IsReadAlike(file, "b.txt.gz", file.fingerprint, rules_));
}

}  // namespace
}  // namespace kestan_cli
