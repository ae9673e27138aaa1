// SPDX-License-Identifier: GPL-3.0-or-later
// The three functions that clean text, written a second time: each takes a whole text and returns a
// whole text.
#ifndef KESTAN_TESTS_MODEL_STRIP_H_
#define KESTAN_TESTS_MODEL_STRIP_H_

#include <cstddef>
#include <string>
#include <vector>

namespace kestan_model {

struct Stripped {
  std::string text;   // what is kept
  bool ends_in_zero;  // whether a zero byte is written after it
  bool operator==(const Stripped& other) const {
    return text == other.text && ends_in_zero == other.ends_in_zero;
  }
};

Stripped StripNonWords(const std::string& text);
Stripped StripWords(const std::string& text, const std::string& stop_text,
                    const std::vector<std::string>& stop_list);
Stripped StripBadLines(const std::string& text);

}  // namespace kestan_model

#endif  // KESTAN_TESTS_MODEL_STRIP_H_
