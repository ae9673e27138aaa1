// SPDX-License-Identifier: GPL-3.0-or-later
// Bytes as a file of the search library.
#ifndef KESTAN_FUZZ_SUPPORT_FILE_COPY_H_
#define KESTAN_FUZZ_SUPPORT_FILE_COPY_H_

#include <memory>
#include <string>

#include "fuzz/support/reporting.h"
#include "fuzz/support/scratch_index.h"
#include "search/files/file_bytes.h"
#include "search/files/numbers.h"
#include "tests/support/files.h"

namespace kestan_fuzz {

// Puts `bytes` into a file, in place of the last one, and opens it.
inline std::shared_ptr<const kestan::search::FileBytes> OpenedCopy(const std::string& bytes) {
  const std::string path = Folder() / "file";
  kestan_tests::WriteFile(path, bytes);
  auto file = kestan::search::FileBytes::Open(path, bytes.size());
  Require(file.ok(), "the file cannot be opened");
  return *file;
}

// Puts the checksum of the bytes from `from` to `end` at `at`, as far as there are such bytes.
inline void CorrectChecksum(std::size_t from, std::size_t end, std::size_t at, std::string* bytes) {
  if (from > end || end > bytes->size() || at > bytes->size() || bytes->size() - at < 8) return;
  std::string checksum;
  const std::string_view checked(*bytes);
  kestan::search::AppendChecksumOf(checked.substr(from, end - from), &checksum);
  bytes->replace(at, checksum.size(), checksum);
}

// A refusal has one line, and is damage or another version.
inline void RequireRefusal(const kestan::search::Status& status) {
  using kestan::search::StatusCode;
  Require(status.code() == StatusCode::kDamaged || status.code() == StatusCode::kVersion,
          "refused for another reason than damage");
  Require(!status.message().empty() && status.message().find('\n') == std::string::npos,
          "a refusal that is not one line");
}

}  // namespace kestan_fuzz

#endif  // KESTAN_FUZZ_SUPPORT_FILE_COPY_H_
