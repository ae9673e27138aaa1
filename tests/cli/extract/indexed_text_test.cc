// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/indexed_text.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/console/message.h"
#include "cli/files/stable_file.h"
#include "tests/cli/command_test.h"
#include "tests/support/packed.h"

namespace kestan_cli {
namespace {

using kestan_tests::Outcome;
using std::string_literals::operator""s;

// What a search without options makes of files, as the records of an index describe them.
class IndexedTextReaderTest : public kestan_tests::CommandTest {
 protected:
  using Text = std::optional<std::string>;

  // Returns the records of the file `name` as it is now. With `reading`, it was read in that way.
  DocumentRecords RecordsOf(const std::string& name, const std::string& reading = "") {
    struct stat status {};
    EXPECT_EQ(stat(Path(name).c_str(), &status), 0);
    // Not through StateOf(): on 32 bits, the command's structure is another one than the tests'.
    const FileState state{static_cast<std::uint64_t>(status.st_size), status.st_mtim.tv_sec,
                          static_cast<std::uint32_t>(status.st_mtim.tv_nsec)};
    const Fingerprint fingerprint{state, std::string(32, '0'), reading};
    return {Path(name), WithFingerprint("", fingerprint), "", ""};
  }

  Text Read(const DocumentRecords& records, const std::vector<std::string>& converters = {}) {
    return IndexedTextReader(converters).Read(records);
  }

  // Writes `bytes` to the file `name` and reads it.
  Text ReadNew(const std::string& name, const std::string& bytes) {
    Write(name, bytes);
    return Read(RecordsOf(name));
  }
};

constexpr const char* kOtherReading = "0123456789abcdef";

TEST_F(IndexedTextReaderTest, UnchangedFileIsRead) { EXPECT_EQ(ReadNew("a", "text"), "text"); }

TEST_F(IndexedTextReaderTest, ChangedFileIsNot) {
  Write("a", "text");
  const FileState state = FileStateIn(RecordsOf("a").user).value();
  const auto read = [&](const FileState& indexed) {
    return Read({Path("a"), WithFingerprint("", {indexed, std::string(32, '0')}), "", ""});
  };
  EXPECT_EQ(read(state), "text");
  EXPECT_EQ(read({state.bytes + 1, state.mtime_seconds, state.mtime_nanoseconds}), std::nullopt);
  EXPECT_EQ(read({state.bytes, state.mtime_seconds + 1, state.mtime_nanoseconds}), std::nullopt);
  EXPECT_EQ(read({state.bytes, state.mtime_seconds, state.mtime_nanoseconds ^ 1}), std::nullopt);
}

TEST_F(IndexedTextReaderTest, WhatIsNoFileIsNotRead) {
  DocumentRecords records{Path("gone"), "size=0 mtime=0.0", "", ""};
  EXPECT_EQ(Read(records), std::nullopt);
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0644), 0);
  EXPECT_EQ(Read(RecordsOf("pipe")), std::nullopt);
  EXPECT_EQ(Read(RecordsOf("")), std::nullopt);
}

TEST_F(IndexedTextReaderTest, RecordNeedsNoMoreThanSizeAndTime) {
  Write("a", "text");
  DocumentRecords records = RecordsOf("a");
  records.user = records.user.substr(0, records.user.find(" hash=")) + " a note of the user";
  EXPECT_EQ(Read(records), "text");
  records.user = "a note of the user";
  EXPECT_EQ(Read(records), std::nullopt);
}

TEST_F(IndexedTextReaderTest, OnlyTheBeginningOfALongFileIsRead) {
  const auto text = ReadNew("a", std::string(kMaxShownText - 10, 'x') + " word " + "cutcutcut");
  EXPECT_EQ(text, std::string(kMaxShownText - 10, 'x') + " word");
  EXPECT_EQ(ReadNew("b", std::string(kMaxShownText, 'x'))->size(), kMaxShownText);
}

TEST_F(IndexedTextReaderTest, CutTextWithoutBlanksEndsInNoBrokenCharacter) {
  for (const std::string start : {"", "x", "xy"}) {
    std::string bytes = start;
    while (bytes.size() <= kMaxShownText) bytes += "\u6c34";
    const auto text = ReadNew("a", bytes);
    ASSERT_TRUE(text.has_value());
    EXPECT_EQ(bytes.compare(0, text->size(), *text), 0) << start;
    EXPECT_EQ((text->size() - start.size()) % 3, 0u);
    EXPECT_GT(text->size(), kMaxShownText - 20);
  }
}

TEST_F(IndexedTextReaderTest, EveryEncodingBecomesUtf8) {
  EXPECT_EQ(ReadNew("latin1", "Z\xfcrich"), "Z\u00fcrich");
  EXPECT_EQ(ReadNew("utf16", "\xff\xfeZ\0\xfc\0r\0"s), "Z\u00fcr");
  EXPECT_EQ(ReadNew("marked", "\xef\xbb\xbfText"), "Text");
  EXPECT_EQ(ReadNew("page.html", "<meta charset=koi8-r><p>\xc1"), "\u0430\n");
}

TEST_F(IndexedTextReaderTest, BinaryFileHasNoText) {
  EXPECT_EQ(ReadNew("a", "text\0"s), std::nullopt);
}

TEST_F(IndexedTextReaderTest, PageHasItsTitleAndTextButNoMarkup) {
  const auto text =
      ReadNew("a.html", "<title>One</title><style>p</style><p class=x>Two &amp; <b>3");
  EXPECT_EQ(text, "One\nTwo & 3\n");
}

TEST_F(IndexedTextReaderTest, TextOfAPageMayStandAfterLongScripts) {
  const std::string script = "<script>" + std::string(2 * kMaxShownText, 'x') + "</script>";
  EXPECT_EQ(ReadNew("a.html", script + "<p>word"), "word\n");
}

TEST_F(IndexedTextReaderTest, ConverterMakesTheText) {
  Write("a.cat", "text");
  DocumentRecords records = RecordsOf("a.cat", kOtherReading);
  records.title = "TEXT";
  EXPECT_EQ(Read(records, {"cat=tr a-z A-Z {}"}), std::nullopt) << "tr reads no file";
  Write("upper", "#!/bin/sh\ntr a-z A-Z <\"$1\"\n");
  ASSERT_EQ(chmod(Path("upper").c_str(), 0755), 0);
  EXPECT_EQ(Read(records, {"cat=" + Path("upper") + " {}"}), "TEXT");
}

TEST_F(IndexedTextReaderTest, TextThatBeginsOtherwiseWasNotReadAlike) {
  Write("a", "One\nTwo");
  DocumentRecords records = RecordsOf("a", kOtherReading);
  records.title = "One";
  EXPECT_EQ(Read(records), std::nullopt) << "the summary is missing";
  records.summary = "Two";
  EXPECT_EQ(Read(records), "One\nTwo");
  records.title = "the user's own";
  EXPECT_EQ(Read(records), "One\nTwo") << "the summary says enough";
  records.summary = "Three";
  EXPECT_EQ(Read(records), std::nullopt);
}

TEST_F(IndexedTextReaderTest, DigitsOfTheRecordNeedNoSummary) {
  Write("a.x", "text");
  const Converters converters({"x=cat {}"});
  const std::string digits = ReadingDigits("a.x", {"text", "text"}, {converters, {}, 0, {}});
  DocumentRecords records = RecordsOf("a.x", digits);
  records.summary = "the user's own";
  EXPECT_EQ(Read(records, {"x=cat {}"}), "text");
  EXPECT_EQ(Read(records, {"x=cat -u {}"}), std::nullopt);
  EXPECT_EQ(Read(records), std::nullopt);
}

TEST_F(IndexedTextReaderTest, ConverterOfTheUserIsNotForFilesThatWereReadByTheirNames) {
  Write("a.x", "text");
  EXPECT_EQ(Read(RecordsOf("a.x"), {"x=touch " + Path("ran") + " {}"}), "text");
  EXPECT_FALSE(std::filesystem::exists(Path("ran")));
}

TEST_F(IndexedTextReaderTest, ConvertersShareTheirTime) {
  Write("a.x", "text");
  Write("slow", "#!/bin/sh\necho >>\"$0.log\"\nexec sleep 60\n");
  ASSERT_EQ(chmod(Path("slow").c_str(), 0755), 0);
  const DocumentRecords records = RecordsOf("a.x", kOtherReading);
  IndexedTextReader reader({"x=" + Path("slow") + " {}"}, {1, std::chrono::milliseconds(500)});
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 20; ++i) EXPECT_EQ(reader.Read(records), std::nullopt);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15));
  EXPECT_EQ(kestan_tests::BytesOfFile(Path("slow.log")), "\n") << "no second run without time";
}

TEST_F(IndexedTextReaderTest, ConverterIsEXTEqualsCOMMAND) {
  EXPECT_THROW(IndexedTextReader({"x"}), CommandError);
}

// The same through the command.
class ShownTextTest : public kestan_tests::CommandTest {
 protected:
  void Index(const std::string& name, const std::string& bytes,
             const std::vector<std::string>& options = {}) {
    Write(name, bytes);
    std::vector<std::string> arguments{"index", "my.index", name};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = Run(arguments);
    ASSERT_EQ(outcome.status, 0) << outcome;
  }

  // Returns the third line of a hit: the snippet.
  std::string Snippet(const std::string& query, const std::vector<std::string>& options = {}) {
    std::vector<std::string> arguments{"search", "--snippets", "my.index", query};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome;
    std::string rest = outcome.out;
    for (int i = 0; i < 2; ++i) rest.erase(0, std::min(rest.find('\n'), rest.size() - 1) + 1);
    return rest;
  }

  // Puts a program `name` into a directory that goes before all others.
  void Install(const std::string& name, const std::string& script) {
    Write("bin/" + name, "#!/bin/sh\n" + script + "\n");
    ASSERT_EQ(chmod(Path("bin/" + name).c_str(), 0755), 0);
    const std::string path = getenv("PATH");
    if (path.find(Path("bin")) == std::string::npos) {
      setenv("PATH", (Path("bin") + ":" + path).c_str(), 1);
    }
  }

  void TearDown() override { setenv("PATH", path_.c_str(), 1); }

 private:
  const std::string path_ = getenv("PATH");
};

TEST_F(ShownTextTest, HitInAPageShowsWhatABrowserShows) {
  Index("a.html", "<title>Soup</title><p class=cream>Water &amp; <b>cre</b>am, <i>leeks");
  EXPECT_EQ(Snippet("cream"), "    Soup Water & [cream], leeks\n");
}

TEST_F(ShownTextTest, HitInLatin1OrUtf16IsShownInUtf8) {
  Index("latin1", "One\nZ\xfcrich and more\n");
  EXPECT_EQ(Snippet("zurich"), "    One [Z\u00fcrich] and more\n");
  Index("utf16", "\xff\xfeO\0n\0e\0\n\0G\0\xe4\0u\0 \0t\0w\0o\0"s);
  EXPECT_EQ(Snippet("gau"), "    One [G\u00e4u] two\n");
}

TEST_F(ShownTextTest, HitInAConvertedFileShowsTheText) {
  Install("pdftotext", "printf 'One\\nTwo words\\n'");
  Index("a.pdf", "%PDF-1.4 raw words");
  EXPECT_EQ(Snippet("two"), "    One [Two] words\n");
}

TEST_F(ShownTextTest, HitWithoutItsConverterHasNoSnippet) {
  Install("pdftotext", "printf 'One\\nraw words\\n'");
  Index("a.pdf", "%PDF-1.4 raw words");
  Install("pdftotext", "exit 1");
  EXPECT_EQ(Snippet("raw"), "");
}

TEST_F(ShownTextTest, CompressedFileNeedsTheConverterThatItWasIndexedWith) {
  Write("a", "One\nTwo words\n");
  ASSERT_EQ(std::system(("gzip -S .pk " + Path("a")).c_str()), 0);
  const std::vector<std::string> options{"--converter", "pk=gzip -dc -S .pk {}"};
  ASSERT_EQ(Run({"index", "my.index", "a.pk", options[0], options[1]}).status, 0);
  EXPECT_EQ(Snippet("two", options), "    One [Two] words\n");
  EXPECT_EQ(Snippet("two"), "");
}

TEST_F(ShownTextTest, ManualPageIsUnpackedAndWithoutItsMacros) {
  Write("x.1.gz",
        kestan_tests::Packed(".TH X 1\n.SH NAME\nx \\- a page\n.PP\nTwo \\fBwords\\fR\n"));
  ASSERT_EQ(Run({"index", "my.index", "x.1.gz"}).status, 0);
  EXPECT_EQ(Snippet("two"), "    x(1) - a page NAME x - a page [Two] words\n");
}

TEST_F(ShownTextTest, ConvertedFormatThatIsTextIsNotShownRaw) {
  Install("upper", "tr a-z A-Z <\"$1\"");
  Index("a.tex", "one\nraw words", {"--converter", "tex=upper {}"});
  EXPECT_EQ(Snippet("words"), "");
  EXPECT_EQ(Snippet("words", {"--converter", "tex=upper {}"}), "    ONE RAW [WORDS]\n");
}

TEST_F(ShownTextTest, StopWordsNeedNotBeGivenAgain) {
  Write("stop", "other");
  Index("a.html", "<p>One<p>Two other words", {"--stop-words", "stop", "--strip-encoded"});
  EXPECT_EQ(Snippet("two"), "    One [Two] other words\n");
}

TEST_F(ShownTextTest, ConverterThatNobodyNamesIsNotRun) {
  Install("mark", "touch ran; cat \"$1\"");
  Index("a.tex", "One\nTwo", {"--converter", "tex=mark {}"});
  std::filesystem::remove(Path("ran"));
  Snippet("two");
  EXPECT_FALSE(std::filesystem::exists(Path("ran")));
}

TEST_F(ShownTextTest, ConverterRunsOnceForEachHitAndOnlyForSnippets) {
  Install("pdftotext", "echo >>runs; printf 'One\\nTwo words\\n'");
  Index("a.pdf", "%PDF-1.4 x");
  std::filesystem::remove(Path("runs"));
  ASSERT_EQ(Run({"search", "my.index", "two words"}).status, 0);
  EXPECT_FALSE(std::filesystem::exists(Path("runs")));
  Snippet("two words");
  EXPECT_EQ(kestan_tests::BytesOfFile(Path("runs")), "\n");
}

TEST_F(IndexedTextReaderTest, CompressedFileIsUnpacked) {
  using kestan_tests::Packed;
  EXPECT_EQ(ReadNew("a.txt.gz", Packed("text")), "text");
  EXPECT_EQ(ReadNew("a.html.xz", Packed("<p>text", "xz")), "text\n");
  std::string words;
  while (words.size() <= 2 * kMaxShownText) words += std::to_string(words.size()) + " ";
  const Text text = ReadNew("b.gz", Packed(words));
  ASSERT_TRUE(text.has_value());
  EXPECT_EQ(words.compare(0, text->size(), *text), 0);
  EXPECT_GT(text->size(), kMaxShownText - 20);
  EXPECT_LE(text->size(), kMaxShownText);
}

TEST_F(IndexedTextReaderTest, OfficeDocumentIsReadWhole) {
  const std::string zip = kestan_tests::Archive(
      "zip", "none",
      {{"picture", std::string(1 << 20, 'x')}, {"content.xml", "<text:p>text</text:p>"}});
  EXPECT_EQ(ReadNew("a.odt", zip), "text\n\n");
}

TEST_F(IndexedTextReaderTest, MailIsRead) {
  EXPECT_EQ(ReadNew("a.eml", "Subject: One\n\nTwo\n"), "One\nTwo\n");
}

TEST_F(IndexedTextReaderTest, ConverterReadsWhatWasUnpacked) {
  Write("a.cat.gz", kestan_tests::Packed("text"));
  DocumentRecords records = RecordsOf("a.cat.gz", kOtherReading);
  records.title = "text";
  EXPECT_EQ(Read(records, {"cat=cat {}"}), "text");
}

}  // namespace
}  // namespace kestan_cli
