// SPDX-License-Identifier: GPL-3.0-or-later
// A module of another version: all that the command may read of it is that.
#include "cli/readers/readers.h"

extern "C" const kestan_cli::Readers* KestanReaders() noexcept {
  static constexpr kestan_cli::Readers kReaders{"0.0.0-other", nullptr, nullptr, nullptr, nullptr,
                                                nullptr,       nullptr, nullptr, nullptr, nullptr};
  return &kReaders;
}
