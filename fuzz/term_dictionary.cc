// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a term dictionary. Whatever it holds, reading comes to an end; and where a walk sees
// terms in order, a look-up finds each of them.
//
// Input: a byte, then the file. No fuzzer guesses a checksum, so where the byte is odd those of the
// blocks and of the index are put right.
#include "search/segment/term_dictionary.h"

#include <string>
#include <vector>

#include "fuzz/support/file_copy.h"
#include "fuzz/support/input.h"

namespace {

using kestan::search::NumberAt;
using kestan::search::TermDictionary;
using kestan::search::TermEntry;
using kestan_fuzz::CorrectChecksum;
using kestan_fuzz::Require;
using kestan_fuzz::RequireRefusal;

constexpr std::size_t kTrailerBytes = 40;
constexpr std::size_t kIndexEntryBytes = 20;

void CorrectChecksums(std::string* bytes) {
  if (bytes->size() < kTrailerBytes) return;
  const std::size_t trailer = bytes->size() - kTrailerBytes;
  const auto index = NumberAt<std::uint64_t>(bytes->data() + trailer);
  if (index > trailer) return;
  const auto first = static_cast<std::size_t>(index);
  const std::size_t blocks = std::min<std::size_t>(
      NumberAt<std::uint32_t>(bytes->data() + trailer + 16), (trailer - first) / kIndexEntryBytes);
  for (std::size_t i = 0; i < blocks; ++i) {
    const std::size_t entry = first + i * kIndexEntryBytes;
    const auto start = NumberAt<std::uint64_t>(bytes->data() + entry);
    const auto end =
        i + 1 == blocks ? index : NumberAt<std::uint64_t>(bytes->data() + entry + kIndexEntryBytes);
    if (end > index) continue;  // of which CorrectChecksum() would make another number
    CorrectChecksum(static_cast<std::size_t>(std::min(start, index)), static_cast<std::size_t>(end),
                    entry + 8, bytes);
  }
  CorrectChecksum(first, bytes->size() - 8, bytes->size() - 8, bytes);
}

// Reads all terms.
//   Returns  whether the whole file could be read and the terms are in order.
bool ReadAll(const TermDictionary& dictionary, std::vector<std::string>* terms) {
  bool in_order = true;
  const auto status = dictionary.ForEach("", [&](const TermEntry& entry) {
    in_order = in_order && (terms->empty() || terms->back() < entry.term);
    terms->emplace_back(entry.term);
    return terms->size() < 10000;
  });
  if (!status.ok()) RequireRefusal(status);
  return status.ok() && in_order;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kestan_fuzz::Input input(data, size);
  const bool corrected = input.Byte() % 2 != 0;
  std::string bytes = input.Rest();
  if (corrected) CorrectChecksums(&bytes);
  const auto dictionary = TermDictionary::Open(kestan_fuzz::OpenedCopy(bytes));
  if (!dictionary.ok()) {
    RequireRefusal(dictionary.status());
    return 0;
  }
  std::vector<std::string> terms;
  const bool is_whole = ReadAll(*dictionary, &terms);
  Require(corrected || !is_whole || terms.size() == dictionary->size(), "terms are missing");
  for (const std::string& term : terms) {
    const auto found = dictionary->Find(term);
    if (!found.ok()) RequireRefusal(found.status());
    Require(corrected || !is_whole || (found.ok() && found->has_value()), "a term is not found");
    const auto status = dictionary->ForEach(term, [](const TermEntry&) { return false; });
    if (!status.ok()) RequireRefusal(status);
  }
  return 0;
}
