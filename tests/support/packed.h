// SPDX-License-Identifier: GPL-3.0-or-later
// Compressed bytes for tests, made by libarchive.
#ifndef KESTAN_TESTS_SUPPORT_PACKED_H_
#define KESTAN_TESTS_SUPPORT_PACKED_H_

#include <archive.h>
#include <archive_entry.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace kestan_tests {

using PackedMembers = std::vector<std::pair<std::string, std::string>>;  // names and bytes

// When each member was changed, in seconds since 1970.
constexpr long kPackedTime = 1700000000;

// Returns an archive of `format` ("zip", "ustar", "raw"), compressed with `filter` ("gzip",
// "bzip2", "xz", "zstd", "none").
inline std::string Archive(const char* format, const char* filter, const PackedMembers& members) {
  archive* const made = archive_write_new();
  EXPECT_EQ(archive_write_set_format_by_name(made, format), ARCHIVE_OK);
  if (std::string(filter) != "none") {
    EXPECT_EQ(archive_write_add_filter_by_name(made, filter), ARCHIVE_OK);
  }
  archive_write_set_bytes_in_last_block(made, 1);
  std::string bytes;
  archive_write_open2(
      made, &bytes, nullptr,
      [](archive*, void* to, const void* piece, std::size_t size) -> la_ssize_t {
        static_cast<std::string*>(to)->append(static_cast<const char*>(piece), size);
        return static_cast<la_ssize_t>(size);
      },
      nullptr, nullptr);
  for (const auto& [name, content] : members) {
    archive_entry* const entry = archive_entry_new();
    archive_entry_set_pathname(entry, name.c_str());
    archive_entry_set_size(entry, static_cast<la_int64_t>(content.size()));
    archive_entry_set_filetype(entry, AE_IFREG);
    archive_entry_set_perm(entry, 0644);
    archive_entry_set_mtime(entry, kPackedTime, 0);
    // Names that are not of ASCII are a warning.
    EXPECT_GE(archive_write_header(made, entry), ARCHIVE_WARN);
    archive_write_data(made, content.data(), content.size());
    archive_entry_free(entry);
  }
  EXPECT_EQ(archive_write_free(made), ARCHIVE_OK);
  return bytes;
}

// Returns `bytes` as the program `filter` compresses them.
inline std::string Packed(const std::string& bytes, const char* filter = "gzip") {
  return Archive("raw", filter, {{"file", bytes}});
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SUPPORT_PACKED_H_
