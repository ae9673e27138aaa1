// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as the edits of a segment. What is read must be what is written again.
//
// Input: a byte, then the file. No fuzzer guesses a checksum, so where the byte is odd the right
// one is added at the end; the byte's half is the number of documents.
#include <string>

#include "fuzz/support/file_copy.h"
#include "fuzz/support/input.h"
#include "search/segment/edits.h"

namespace {

using kestan::Code;
using kestan::search::DocumentEdit;
using kestan::search::Edits;
using kestan_fuzz::Require;

void RequireSame(const Edits& left, const Edits& right, Code documents) {
  Require(left.removed_count() == right.removed_count(), "another number of removed documents");
  for (unsigned i = 0; i <= documents + 1U; ++i) {
    const auto code = static_cast<Code>(i);
    Require(left.IsRemoved(code) == right.IsRemoved(code), "removed or not");
    const DocumentEdit* const a = left.EditOf(code);
    const DocumentEdit* const b = right.EditOf(code);
    Require((a == nullptr) == (b == nullptr), "edited or not");
    if (a == nullptr) continue;
    Require(a->name == b->name && a->renamed == b->renamed && a->fields == b->fields,
            "other edits");
    Require(!a->name || left.FindRenamed(*a->name) == code, "a new name is not found");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kestan_fuzz::Input input(data, size);
  const unsigned choice = input.Byte();
  std::string bytes = input.Rest();
  if (choice % 2 != 0) {
    const std::size_t end = bytes.size();
    bytes.append(8, '\0');
    kestan_fuzz::CorrectChecksum(0, end, end, &bytes);
  }
  const auto documents = static_cast<Code>(choice / 2);
  const auto edits = Edits::Decode(bytes, documents);
  if (!edits.ok()) {
    kestan_fuzz::RequireRefusal(edits.status());
    return 0;
  }
  const auto again = Edits::Decode(edits->Encode(), documents);
  Require(again.ok(), "what was written cannot be read");
  RequireSame(*edits, *again, documents);
  return 0;
}
