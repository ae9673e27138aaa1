// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as the MANIFEST of an index. What is read must be what is written again.
//
// Input: a byte, then the file. No fuzzer guesses a checksum, so where the byte is odd the last
// line is added, with the right one.
#include <string>

#include "fuzz/support/file_copy.h"
#include "fuzz/support/input.h"
#include "search/index/manifest/manifest.h"
#include "search/index/manifest/manifest_text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kestan_fuzz::Input input(data, size);
  const bool is_corrected = input.Byte() % 2 != 0;
  std::string bytes = input.Rest();
  if (is_corrected) {
    const std::uint64_t checksum = kestan::search::ChecksumOf(bytes);
    bytes += "checksum ";
    kestan::search::AppendHex(checksum, &bytes);
    bytes += '\n';
  }
  const auto manifest = kestan::search::Manifest::Decode(bytes);
  if (!manifest.ok()) {
    kestan_fuzz::RequireRefusal(manifest.status());
    return 0;
  }
  kestan_fuzz::Require(manifest->Encode() == bytes, "another manifest was read");
  for (const auto& segment : manifest->segments) {
    const bool is_possible = segment.number < manifest->next_segment &&
                             segment.removed <= segment.documents && segment.documents > 0;
    kestan_fuzz::Require(is_possible, "a segment that cannot be");
  }
  return 0;
}
