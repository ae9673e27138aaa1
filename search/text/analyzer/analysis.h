// SPDX-License-Identifier: GPL-3.0-or-later
// The words of a text, for the inside of the library: kestan::search::Analyzer throws nothing.
#ifndef KESTAN_SEARCH_TEXT_ANALYZER_ANALYSIS_H_
#define KESTAN_SEARCH_TEXT_ANALYZER_ANALYSIS_H_

#include <kestan/search/analyzer.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

// Each does what the function of Analyzer does that it is called by.
//   Throws   TransliterationError, std::bad_alloc.
std::string AnalyzedWords(std::string_view utf8);

// What `visit` throws passes through.
void ForEachAnalyzedWord(std::string_view utf8,
                         const std::function<bool(const AnalyzedWord&)>& visit);

std::vector<WordGroup> AnalyzedGroups(std::string_view utf8);

// Returns all words of `utf8` as one group, whatever stands between them; without words if there
// are none.
WordGroup AnalyzedPhrase(std::string_view utf8);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_ANALYZER_ANALYSIS_H_
