// SPDX-License-Identifier: GPL-3.0-or-later
// By which rules the words of an index were made of text.
#ifndef KESTAN_SEARCH_TEXT_TEXT_RULES_H_
#define KESTAN_SEARCH_TEXT_TEXT_RULES_H_

#include <cstdint>

namespace kestan::search {

enum class TextRules : std::uint8_t {
  kAsciiLetters,  // IndexedWords(): index files of class Kestan, folders of earlier versions
  kAnalyzer,      // kestan::search::Analyzer
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_TEXT_RULES_H_
