// SPDX-License-Identifier: GPL-3.0-or-later
// A file for a program that must open one.
#ifndef KESTAN_CLI_FILES_TEMPORARY_FILE_H_
#define KESTAN_CLI_FILES_TEMPORARY_FILE_H_

#include <string>
#include <string_view>

namespace kestan_cli {

// A file in a folder of its own, which nobody else may enter; both are removed in the end.
class TemporaryFile {
 public:
  // Writes `bytes` to a new file below TMPDIR, or /tmp, whose name ends with `extension`.
  //   Throws   SkipFile if that fails.
  TemporaryFile(const std::string& extension, std::string_view bytes);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::string& path() const { return path_; }

 private:
  void Remove() const;

  std::string folder_;
  std::string path_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_TEMPORARY_FILE_H_
