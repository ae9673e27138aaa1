// SPDX-License-Identifier: GPL-3.0-or-later
// Reads a file that may change or vanish meanwhile, and notices if it does.
#ifndef KESTAN_CLI_FILES_STABLE_FILE_H_
#define KESTAN_CLI_FILES_STABLE_FILE_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/files/fingerprint.h"
#include "cli/files/open_file.h"

struct stat;

namespace kestan_cli {

// Returns the state of the file of `status`.
FileState StateOf(const struct stat& status);

// Reads a file from its start to its end, and hashes it.
class StableFile {
 public:
  // Opens the file at `path`. If it was changed within the last tick of the file system's clock,
  // waits for the next tick: until then, another change would have the same time.
  //   Throws   SkipFile if it cannot be opened or is not a regular file.
  explicit StableFile(const std::string& path);

  const FileState& state() const { return state_; }

  // Reads the next piece.
  //   Returns  false at the end; else `*piece` is valid until the next call.
  //   Throws   SkipFile if it cannot be read, or has grown since it was opened.
  bool Read(std::string_view* piece);

  // Has Read() go on at `at`, counted from the start. Finish() must not be called any more.
  //   Throws   SkipFile if that fails.
  void MoveTo(std::uint64_t at);

  //   Throws   SkipFile if the file has changed since it was opened, or another is at its path.
  void CheckUnchanged() const;

  // Returns the fingerprint of the file after Read() has returned false.
  //   Throws   SkipFile if the file has changed since it was opened, or another is at its path.
  Fingerprint Finish() const;

 private:
  const std::string path_;
  OpenFile file_;
  FileState state_;
  std::vector<char> piece_;
  std::uint64_t bytes_read_ = 0;  // as far as the next piece
  ContentHash hash_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_STABLE_FILE_H_
