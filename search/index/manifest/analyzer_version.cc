// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/manifest/analyzer_version.h"

#include <kestan/search/analyzer.h>

namespace kestan::search {

// What follows a blank is about the language.
Result<TextRules> RulesOf(const std::string& folder, const Manifest& manifest) {
  const auto found = manifest.properties.find(kAnalyzerProperty);
  if (found == manifest.properties.end()) return TextRules::kAsciiLetters;
  const std::string version = found->second.substr(0, found->second.find(' '));
  if (version == Analyzer::kVersion) return TextRules::kAnalyzer;
  return Status(StatusCode::kVersion,
                "its words are of version " + version + "; this program knows version " +
                    std::string(Analyzer::kVersion),
                folder);
}

}  // namespace kestan::search
