// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes through Kestan::StripWords.
//
// Input: a byte N, the stop text and N % 4 strings of the stop list, each ended by a NUL, the text.
#include <kestan/kestan.h>

#include <vector>

#include "fuzz/support/input.h"
#include "fuzz/support/strip_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kestan_fuzz::Input input(data, size);
  const unsigned listed = input.Below(4);
  const std::string stop_text = input.String();
  std::vector<std::string> stop_list;
  for (unsigned i = 0; i < listed; ++i) stop_list.push_back(input.String());
  const std::string text = input.Rest();

  const auto stop_bytes = kestan_fuzz::ExactString(stop_text);
  std::vector<kestan_fuzz::ExactBytes> held;
  std::vector<const char*> pointers;
  for (const std::string& word : stop_list) {
    held.push_back(kestan_fuzz::ExactString(word));
    pointers.push_back(held.back().get());
  }
  pointers.push_back(nullptr);
  pointers.shrink_to_fit();
  const auto strip = [&](char* bytes, unsigned length) {
    return Kestan::StripWords(bytes, length, stop_bytes.get(), pointers.data());
  };
  kestan_fuzz::CheckStrip(text, 0, kestan_model::StripWords(text, stop_text, stop_list), strip);
  return 0;
}
