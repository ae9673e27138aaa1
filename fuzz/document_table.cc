// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a document table. Whatever it holds, no answer leaves the file, and one that is not
// there is reported as damage.
//
// Input: a byte, then the file. No fuzzer guesses a checksum, so where the byte is odd all of them
// are put right.
#include "search/segment/document_table.h"

#include <algorithm>
#include <string>

#include "fuzz/support/file_copy.h"
#include "fuzz/support/input.h"

namespace {

using kestan::Code;
using kestan::search::DocumentEntry;
using kestan::search::DocumentTable;
using kestan::search::NumberAt;
using kestan_fuzz::CorrectChecksum;
using kestan_fuzz::Require;
using kestan_fuzz::RequireRefusal;

constexpr std::size_t kFixedBytes = 40;
constexpr std::size_t kPartBytes = 4096;

void CorrectChecksums(std::string* bytes) {
  if (bytes->size() < kFixedBytes) return;
  const std::uint64_t documents = NumberAt<std::uint32_t>(bytes->data() + 24);
  const std::uint64_t record_bytes = NumberAt<std::uint32_t>(bytes->data() + 28);
  const std::uint64_t parts_bytes =
      documents * 4 + (documents + 1) * 4 + documents * 2 + record_bytes;
  const std::uint64_t parts = (parts_bytes + kPartBytes - 1) / kPartBytes;
  const std::uint64_t end = kFixedBytes + parts * 8;
  if (end + 8 > bytes->size()) return;
  for (std::uint64_t part = 0; part < parts; ++part) {
    const auto start = static_cast<std::size_t>(end + 8 + part * kPartBytes);
    CorrectChecksum(start, std::min(start + kPartBytes, bytes->size()),
                    static_cast<std::size_t>(kFixedBytes + part * 8), bytes);
  }
  CorrectChecksum(0, static_cast<std::size_t>(end), static_cast<std::size_t>(end), bytes);
}

void AskEverything(const DocumentTable& table) {
  for (std::size_t i = 0; i <= table.size(); i += 100) {
    table.WillReadStart(static_cast<Code>(i));
    table.WillReadRecord(static_cast<Code>(i));
  }
  for (std::size_t i = 1; i <= table.size(); ++i) {
    const auto code = static_cast<Code>(i);
    const DocumentEntry entry = table.EntryOf(code);
    const bool is_valid = table.status().ok();
    Require(!is_valid || entry.name == table.NameOf(code), "two names of one document");
    Require(entry.words == table.WordsOf(code), "two numbers of words");
    const auto found = table.Find(entry.name);
    Require(!found || (*found >= 1 && *found <= table.size()), "a code that no document has");
    Require(!found || !table.status().ok() || table.NameOf(*found) == entry.name,
            "another document is found");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kestan_fuzz::Input input(data, size);
  const bool corrected = input.Byte() % 2 != 0;
  std::string bytes = input.Rest();
  if (corrected) CorrectChecksums(&bytes);
  const auto table = DocumentTable::Open(kestan_fuzz::OpenedCopy(bytes));
  if (!table.ok()) {
    RequireRefusal(table.status());
    return 0;
  }
  AskEverything(*table);
  const auto status = table->Verify();
  if (!status.ok()) RequireRefusal(status);
  return 0;
}
