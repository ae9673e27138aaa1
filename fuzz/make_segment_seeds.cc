// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the hand-made seeds of the files that belong to a segment: make_segment_seeds fuzz/seeds.
#include <cstdio>
#include <filesystem>
#include <string>

#include "search/index/manifest/manifest.h"
#include "search/segment/document_table.h"
#include "search/segment/edits.h"
#include "search/segment/term_dictionary.h"
#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace {

using kestan::RecordPlace;
using kestan::search::DocumentField;
using kestan::search::DocumentTableWriter;
using kestan::search::Edits;
using kestan::search::Manifest;
using kestan::search::SegmentInfo;
using kestan::search::TermDictionaryWriter;

// The first byte says whether checksums are put right.
constexpr char kAsItIs = '\0';
constexpr char kCorrected = '\1';

std::string Dictionary(unsigned terms) {
  const kestan_tests::TempDir dir;
  TermDictionaryWriter writer;
  if (!writer.Create(dir / "terms").ok()) return "";
  std::uint64_t offset = 1000;
  for (unsigned i = 0; i < terms; ++i) {
    const std::string term = "t" + std::to_string(1000 + i);
    const auto bytes = static_cast<std::uint32_t>(term.size());
    if (i % 10 == 3) offset -= 200;
    writer.Add({term, i % 5, i % 10 == 7 ? RecordPlace{} : RecordPlace{offset, bytes, i}});
    offset += bytes + i;
  }
  return writer.Finish().ok() ? kestan_tests::ReadFile(dir / "terms") : "";
}

std::string Table(unsigned documents) {
  const kestan_tests::TempDir dir;
  DocumentTableWriter writer;
  if (!writer.Create(dir / "documents").ok()) return "";
  for (unsigned i = 0; i < documents; ++i) {
    const std::string name = "name" + std::to_string(i * 7 % 101);
    const auto key_bytes = static_cast<std::uint32_t>(name.size() + 2);
    const RecordPlace place{1000 + i * 50, key_bytes, 20};
    writer.Add({name, i, 1000 + i, {place, i % 2 == 0 ? place : RecordPlace{}, {}}});
  }
  return writer.Finish().ok() ? kestan_tests::ReadFile(dir / "documents") : "";
}

Edits SomeEdits() {
  Edits edits(20);
  edits.Remove(1);
  edits.Remove(2);
  edits.Remove(20);
  edits.Rename(3, "new", 1000);
  edits.Rename(9, "newer", 2000);
  edits.SetField(9, DocumentField::kTitle, "title");
  edits.SetField(11, DocumentField::kHostData, "");
  return edits;
}

std::string ManifestText(std::uint64_t segments) {
  Manifest manifest;
  manifest.generation = segments + 1;
  manifest.next_segment = segments + 1;
  manifest.with_positions = segments % 2 == 0;
  if (segments > 0) manifest.properties = {{"key", "some value"}, {"other", "a \n\\ b"}};
  for (std::uint64_t number = 1; number <= segments; ++number) {
    SegmentInfo info;
    info.number = number;
    info.documents = 10;
    info.segment = {1000 * number, 11};
    info.terms = {200, 12};
    info.table = {300, 13};
    if (number % 2 == 0) {
      info.edit_number = number;
      info.removed = 3;
      info.edits = {40, 14};
    }
    manifest.segments.push_back(info);
  }
  return manifest.Encode();
}

void WriteSeeds(const std::filesystem::path& folder) {
  const auto write = [&folder](const char* target, const std::string& name,
                               const std::string& bytes) {
    std::filesystem::create_directories(folder / target);
    kestan_tests::WriteFile(folder / target / name, bytes);
  };
  for (const unsigned count : {0U, 3U, 90U}) {
    const std::string name = std::to_string(count);
    write("term_dictionary", name, kAsItIs + Dictionary(count));
    write("term_dictionary", name + "_corrected", kCorrected + Dictionary(count));
    write("document_table", name, kAsItIs + Table(count));
    write("document_table", name + "_corrected", kCorrected + Table(count));
  }
  write("document_table", "two_parts", kCorrected + Table(400));
  for (const unsigned count : {0U, 1U, 4U}) {
    const std::string name = std::to_string(count);
    const std::string text = ManifestText(count);
    write("manifest", name, kAsItIs + text);
    write("manifest", name + "_corrected", kCorrected + text.substr(0, text.rfind("checksum ")));
  }
  const std::string edits = SomeEdits().Encode();
  write("segment_edits", "twenty", static_cast<char>(20 * 2) + edits);
  write("segment_edits", "twenty_corrected",
        static_cast<char>(20 * 2 + 1) + edits.substr(0, edits.size() - 8));
  write("segment_edits", "none", kAsItIs + Edits(0).Encode());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_segment_seeds FOLDER\n");
    return 1;
  }
  WriteSeeds(argv[1]);
  return 0;
}
