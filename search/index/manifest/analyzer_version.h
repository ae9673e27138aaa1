// SPDX-License-Identifier: GPL-3.0-or-later
// The version of the Analyzer that made the words of an index, as its manifest has it.
#ifndef KESTAN_SEARCH_INDEX_MANIFEST_ANALYZER_VERSION_H_
#define KESTAN_SEARCH_INDEX_MANIFEST_ANALYZER_VERSION_H_

#include <kestan/search/status.h>

#include <string>
#include <string_view>

#include "search/index/manifest/manifest.h"
#include "search/text/text_rules.h"

namespace kestan::search {

// The property of an index that has the version. Without it, words are ASCII letters.
inline constexpr std::string_view kAnalyzerProperty = "analyzer";

// Returns the rules by which words of the index in `folder` are made of text.
//   Returns  kVersion for a version that is not known here.
Result<TextRules> RulesOf(const std::string& folder, const Manifest& manifest);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_MANIFEST_ANALYZER_VERSION_H_
