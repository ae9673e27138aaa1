// SPDX-License-Identifier: GPL-3.0-or-later
// All of a file's text is indexed, or the file is named with what is missing: for every way of
// reading files, and every byte in them.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/cli/sync/run_index_test.h"

namespace kestan_cli {
namespace {

const std::vector<std::string> kCharsets{
    "us-ascii",     "iso-8859-1",     "iso-8859-2",   "iso-8859-3",     "iso-8859-4",
    "iso-8859-5",   "iso-8859-6",     "iso-8859-7",   "iso-8859-8",     "iso-8859-9",
    "iso-8859-10",  "iso-8859-11",    "iso-8859-13",  "iso-8859-14",    "iso-8859-15",
    "iso-8859-16",  "windows-1250",   "windows-1251", "windows-1252",   "windows-1253",
    "windows-1254", "windows-1255",   "windows-1256", "windows-1257",   "windows-1258",
    "windows-874",  "macintosh",      "koi8-r",       "x-mac-cyrillic", "koi8-u",
    "ibm866",       "gb2312",         "gbk",          "gb18030",        "big5",
    "big5-hkscs",   "euc-jp",         "shift_jis",    "iso-2022-jp",    "euc-kr",
    "iso-2022-kr",  "ks_c_5601-1987", "iso-2022-cn",  "hz-gb-2312",     "utf-7",
    "utf-8",        "utf-16",         "utf-16le",     "utf-16be",       "utf-32",
    "cp850",        "x-user-defined", "johab",        "viscii",         "scsu",
    "bocu-1",       "ibm037",         "lmbcs",        "cesu-8",         "nonsense"};

// Takes minutes.
bool IsLongRun() { return std::getenv("KESTAN_BYTES_ALL") != nullptr; }

std::string Marker(unsigned number) {
  return std::string("marker") + static_cast<char>('a' + number / 16) +
         static_cast<char>('a' + number % 16);
}

// Returns the markers from `first` to `last` with the bytes of their numbers after them, each
// followed by `after`. No text has a NUL; a byte that begins a tag is markup.
std::string BytesBetweenMarkers(unsigned first, unsigned last, const std::string& after) {
  std::string text;
  for (unsigned byte = first; byte <= last; ++byte) {
    const bool is_markup = byte == '<' && after != " ";
    text += Marker(byte) + " " + static_cast<char>(is_markup ? ' ' : byte) + after + " ";
  }
  return text + Marker(0) + "\n";
}

class WholeTextTest : public RunIndexTest {
 protected:
  // Writes the files "NAME.EXTENSION" with all bytes in them, `start` before each text.
  void WriteAllBytes(const std::string& name, const std::string& extension,
                     const std::string& start) {
    for (const std::string after : {" ", "e", "\xbf", "@"}) {
      const std::string path = "d/" + name + std::to_string(after[0]);
      const unsigned step = IsLongRun() ? 1 : 255;
      for (unsigned byte = 1; byte < 256; byte += step) {
        const std::string file = path + "-" + std::to_string(byte) + extension;
        Write(file, start + BytesBetweenMarkers(byte, byte + step - 1, after));
        for (unsigned each = byte; each < byte + step; ++each) ++expected_[Marker(each)];
        ++expected_[Marker(0)];
      }
    }
  }

  // Every marker is in all documents into which it was written.
  void ExpectAllMarkers() {
    std::map<std::string, int> found;
    const auto reader = kestan::search::IndexReader::Open("my.index");
    ASSERT_TRUE(reader.ok());
    const auto terms = reader->Terms("marker");
    ASSERT_TRUE(terms.ok());
    for (const auto& term : *terms) found[term.term] = static_cast<int>(term.documents);
    for (const auto& [marker, count] : expected_) {
      EXPECT_EQ(found[marker], count) << marker << "\n" << Search("NOT " + marker);
    }
  }

  std::map<std::string, int> expected_;
};

TEST_F(WholeTextTest, PagesInEveryEncodingAreIndexedWhateverByteIsInThem) {
  for (const std::string& charset : kCharsets) {
    WriteAllBytes(charset, ".html", "<meta charset=\"" + charset + "\"><p>");
  }
  WriteAllBytes("none", ".html", "<p>");
  WriteAllBytes("mark", ".html", "\xef\xbb\xbf<p>");
  WriteAllBytes("xml", ".xhtml", "<?xml version='1.0' encoding='us-ascii'?><p>");
  EXPECT_NE(Index().find("skipped 0\n"), std::string::npos);
  ExpectAllMarkers();
}

TEST_F(WholeTextTest, TextsAreIndexedWhateverByteIsInThem) {
  WriteAllBytes("plain", ".txt", "");
  WriteAllBytes("mark", ".txt", "\xef\xbb\xbf");
  WriteAllBytes("heading", ".md", "# Title\n\n");
  EXPECT_NE(Index().find("skipped 0\n"), std::string::npos);
  ExpectAllMarkers();
}

TEST_F(WholeTextTest, OutputOfConvertersIsIndexedWhateverByteIsInIt) {
  WriteAllBytes("output", ".x", "");
  WriteAllBytes("mark", ".x", "\xef\xbb\xbf");
  options_.reading.converters = {"x=cat {}"};
  EXPECT_NE(Index().find("skipped 0\n"), std::string::npos);
  ExpectAllMarkers();
}

// ---- UTF-16: a byte too many or too few makes other text of all that follows ----

std::string InUtf16(const std::string& ascii, bool big_endian) {
  std::string text = big_endian ? "\xfe\xff" : "\xff\xfe";
  for (const char each : ascii) {
    if (big_endian) text += '\0';
    text += each;
    if (!big_endian) text += '\0';
  }
  return text;
}

enum class Damage { kReplace, kInsert, kRemove };

std::string Damaged(std::string text, std::size_t at, Damage damage, char byte) {
  if (damage == Damage::kReplace) text[at] = byte;
  if (damage == Damage::kInsert) text.insert(at, 1, byte);
  if (damage == Damage::kRemove) text.erase(at, 1);
  return text;
}

class WholeUtf16Test : public WholeTextTest {
 protected:
  // Writes a text with every damage to the two characters between its words.
  void WriteDamaged(const std::string& start, bool big_endian, const std::string& extension) {
    const std::string whole = InUtf16(start + "alpha -- omega\n", big_endian);
    const std::size_t first = 2 + 2 * (start.size() + 6);
    for (std::size_t at = first; at < first + 4; ++at) {
      for (const Damage damage : {Damage::kReplace, Damage::kInsert, Damage::kRemove}) {
        for (const int byte :
             {0x00, 0x01, 0x0a, 0x20, 0x41, 0x7f, 0x80, 0xc3, 0xd8, 0xdc, 0xfe, 0xff}) {
          Write("d/" + std::to_string(++count_) + extension,
                Damaged(whole, at, damage, static_cast<char>(byte)));
        }
      }
    }
  }

  int count_ = 0;
};

TEST_F(WholeUtf16Test, DamageLosesNoWordInSilence) {
  for (const bool big_endian : {false, true}) {
    WriteDamaged("", big_endian, ".txt");
    WriteDamaged("<p>", big_endian, ".html");
    WriteDamaged("", big_endian, ".x");
  }
  options_.reading.converters = {"x=cat {}"};
  options_.why = true;
  const std::string report = Index();
  EXPECT_EQ(status_, kIncomplete);
  const std::string found = Search("alpha AND omega");
  int in_part = 0;
  for (int i = 1; i <= count_; ++i) {
    for (const char* extension : {".txt", ".html", ".x"}) {
      const std::string name = "d/" + std::to_string(i) + extension;
      if (!std::filesystem::exists(name)) continue;
      const bool is_reported = report.find("'" + name + "'") != std::string::npos;
      if (is_reported) ++in_part;
      EXPECT_TRUE(is_reported || found.find(" " + name + "\n") != std::string::npos) << name;
    }
  }
  EXPECT_GE(in_part, count_ * 2 / 3);  // all with a byte too many or too few
}

TEST_F(WholeUtf16Test, FileThatIsIndexedInPartIsNamed) {
  Write("d/a", InUtf16("alpha", false) + "x");
  EXPECT_EQ(Index(), Report(1, 0, 0, 0, 0) +
                         "kestan: indexed 'd/a' in part: its UTF-16 has half a character too much "
                         "or too little\n");
  EXPECT_EQ(status_, kIncomplete);
  EXPECT_EQ(Search("alpha"), "100 d/a\n");
}

// ---- Converters that do not write all that they should ----

class BadConverterTest : public WholeTextTest {
 protected:
  // Indexes a file by a converter that does what `script` says after half of the text.
  std::string IndexBy(const std::string& script) {
    Write("tool", "#!/bin/sh\necho alpha\n" + script + "\n");
    EXPECT_EQ(chmod("tool", 0755), 0);
    Write("d/a.x", "text\n");
    Write("d/b", "text\n");
    options_.reading.converters = {"x=./tool {}"};
    options_.why = true;
    return Index();
  }
};

TEST_F(BadConverterTest, EveryFailureIsReported) {
  options_.converter_limits = {1, std::uint64_t{1} << 30, 1000};
  const std::map<std::string, std::string> reasons{
      {"exit 1", "ended with status 1"},
      {"exit 127", "could not be started"},
      {"kill -9 $$", "was ended by signal 9"},
      {"kill -13 $$", "was ended by signal 13"},
      {"sleep 5", "took more than 1 second"},
      {"head -c 2000 /dev/zero | tr '\\0' x", "wrote more than 1000 bytes"},
      {"printf 'a\\0b'", "binary after conversion"},
      {"exec no-such-program", "could not be started"}};
  for (const auto& [script, reason] : reasons) {
    const std::string report = IndexBy(script);
    EXPECT_NE(report.find("skipped 'd/a.x': "), std::string::npos) << report;
    EXPECT_NE(report.find(reason), std::string::npos) << report;
    EXPECT_EQ(Search("alpha"), "") << script;
  }
}

}  // namespace
}  // namespace kestan_cli
