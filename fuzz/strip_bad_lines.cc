// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes through Kestan::StripBadLines.
#include <kestan/kestan.h>

#include "fuzz/support/input.h"
#include "fuzz/support/strip_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = kestan_fuzz::Input(data, size).Rest();
  kestan_fuzz::CheckStrip(text, 0, kestan_model::StripBadLines(text), Kestan::StripBadLines);
  return 0;
}
