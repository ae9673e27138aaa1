// SPDX-License-Identifier: GPL-3.0-or-later
// A stream of the C library that closes itself.
#ifndef KESTAN_CLI_FILES_OPEN_FILE_H_
#define KESTAN_CLI_FILES_OPEN_FILE_H_

#include <cstdio>
#include <memory>

namespace kestan_cli {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using OpenFile = std::unique_ptr<std::FILE, CloseFile>;

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_OPEN_FILE_H_
