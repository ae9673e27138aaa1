// SPDX-License-Identifier: GPL-3.0-or-later
// The page of the index folder shows the bytes that the search library writes.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "search/segment/document_table.h"
#include "search/segment/edits.h"
#include "search/segment/term_dictionary.h"
#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using kestan_tests::ReadFile;
using kestan_tests::TempDir;

// Returns the bytes of the block "```KIND" of the page: pairs of hex digits, comments after '#'.
std::string BytesOf(const std::string& kind) {
  const std::string page = ReadFile(KESTAN_SOURCE_DIR "/docs/index-folder.md");
  const std::string fence = "\n```" + kind + "\n";
  const std::size_t start = page.find(fence) + fence.size();
  std::istringstream lines(page.substr(start, page.find("\n```", start) - start));
  std::string bytes;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line.substr(0, line.find('#')));
    for (std::string word; words >> word;) {
      bytes += static_cast<char>(std::stoi(word, nullptr, 16));
    }
  }
  EXPECT_FALSE(bytes.empty()) << kind;
  return bytes;
}

TEST(IndexFolderPageTest, TheTermDictionaryHasTheBytesOfThePage) {
  const TempDir dir;
  TermDictionaryWriter writer;
  ASSERT_TRUE(writer.Create(dir / "1.terms").ok());
  writer.Add({"hello", 2, {1722, 5, 12}});
  writer.Add({"there", 1, {1722 + 5 + 12, 5, 6}});
  writer.SetSegment(0x0123456789abcdef);
  ASSERT_TRUE(writer.Finish().ok());
  EXPECT_EQ(ReadFile(dir / "1.terms"), BytesOf("terms"));
}

TEST(IndexFolderPageTest, TheDocumentTableHasTheBytesOfThePage) {
  const TempDir dir;
  DocumentTableWriter writer;
  ASSERT_TRUE(writer.Create(dir / "1.documents").ok());
  writer.Add({"b.txt", 2, 1001, {RecordPlace{1682, 7, 9}, {}, {}}});
  writer.Add({"a.txt", 1, 1002, {}});
  writer.SetSegment(0x0123456789abcdef);
  ASSERT_TRUE(writer.Finish().ok());
  EXPECT_EQ(ReadFile(dir / "1.documents"), BytesOf("documents"));
}

TEST(IndexFolderPageTest, TheEditsHaveTheBytesOfThePage) {
  Edits edits(2);
  edits.Remove(2);
  edits.Rename(1, "c.txt", 1'700'000'000);
  edits.SetField(1, DocumentField::kSummary, "Hi");
  EXPECT_EQ(edits.Encode(), BytesOf("edits"));
}

}  // namespace
}  // namespace kestan::search
