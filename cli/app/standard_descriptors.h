// SPDX-License-Identifier: GPL-3.0-or-later
// Keeps the descriptors of the standard streams in use.
#ifndef KESTAN_CLI_APP_STANDARD_DESCRIPTORS_H_
#define KESTAN_CLI_APP_STANDARD_DESCRIPTORS_H_

#include <array>

#include "cli/files/open_file.h"

namespace kestan_cli {

// Opens those of the three standard descriptors that the caller closed. Otherwise the index file
// could be opened as one of them, and output would be written into it.
class StandardDescriptors {
 public:
  // Opens them for reading only, so that printing to a closed stream still fails.
  StandardDescriptors() {
    for (OpenFile& placeholder : placeholders_) placeholder.reset(std::fopen("/dev/null", "r"));
  }

 private:
  std::array<OpenFile, 3> placeholders_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_APP_STANDARD_DESCRIPTORS_H_
