// SPDX-License-Identifier: GPL-3.0-or-later
// Any text as a dump for LoadIndex. What it accepts must be what DumpIndex writes for the records
// that were loaded.
//
// Input: a byte, then the text. No fuzzer guesses a checksum, so where the byte is odd the right
// last line is added, with the byte's half as the number of records.
#include <kestan/maintenance/dump.h>
#include <kestan/storage/checksum/crc64.h>

#include <array>
#include <cstdio>

#include "fuzz/support/input.h"
#include "fuzz/support/reporting.h"
#include "fuzz/support/scratch_index.h"
#include "tests/maintenance/dump/dump_text.h"

namespace {

using kestan_fuzz::Require;

std::string LastLine(const std::string& text, unsigned records) {
  kestan::Crc64 checksum;
  checksum.Add(text);
  std::array<char, 40> line;
  const auto value = static_cast<unsigned long long>(checksum.Value());
  std::snprintf(line.data(), line.size(), "end %u %016llx\n", records, value);
  return line.data();
}

// Long records may be broken anywhere, and the checksum goes by that.
std::string WithoutBreaks(std::string text) {
  for (std::size_t at = text.find("\\\n"); at != text.npos; at = text.find("\\\n", at)) {
    text.erase(at, 2);
  }
  return text.substr(0, text.rfind("\nend "));
}

void OpenNew(Database* store) {
  static const std::string path = kestan_fuzz::Folder() / "index";
  kestan_fuzz::MakeIndex(path, {});
  Require(store->Open(path.c_str(), 1) == 0, "cannot open the index");
}

void CheckSame(Database& store, const std::string& text) {
  std::string dumped;
  Require(kestan_tests::DumpInto(store, &dumped) == kestan::StoreError::kNone,
          "what was loaded cannot be dumped");
  Require(WithoutBreaks(dumped) == WithoutBreaks(text), "the dump is another than was loaded");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kestan_fuzz::Input input(data, size);
  const unsigned choice = input.Byte();
  std::string text = input.Rest();
  if (choice % 2 != 0) {
    if (!text.empty() && text.back() != '\n') text += '\n';
    text += LastLine(text, choice / 2);
  }
  Database store;
  OpenNew(&store);
  const std::string complaint = kestan_tests::LoadInto(store, text);
  Require(complaint.find('\n') == complaint.npos, "a complaint of more than one line");
  if (complaint.empty()) {
    CheckSame(store, text);
  } else {
    Require(complaint.rfind("line ", 0) == 0, "a complaint without a line");
  }
  return 0;
}
