// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/manifest/index_language.h"

#include "search/text/utf8.h"

namespace kestan::search {

const Language* LanguageOf(const Manifest& manifest) {
  const auto found = manifest.properties.find(kLanguageProperty);
  return LanguageOfProperty(found != manifest.properties.end() ? found->second : "");
}

Status CheckLanguage(const std::string& wanted) {
  if (wanted.empty() || wanted == kNoLanguage || FindLanguage(wanted) != nullptr) return {};
  return {StatusCode::kInvalidArgument,
          "no word forms are known of " + Quoted(wanted) + ", but of " + LanguageNames()};
}

void IndexLanguage::Start(Properties* properties) {
  guess_ = LanguageGuess();
  has_documents_ = false;
  if (wanted_.empty()) return;
  const Language* const language = FindLanguage(wanted_);
  const std::string_view name = language != nullptr ? language->name : kNoLanguage;
  properties->insert_or_assign(std::string(kLanguageProperty), std::string(name));
}

void IndexLanguage::Add(const Document& document) {
  guess_.Add(document.text.empty() ? document.words : document.text);
  has_documents_ = true;
}

void IndexLanguage::Settle(Properties* properties) const {
  if (has_documents_) properties->emplace(kLanguageProperty, guess_.Guess()->name);
}

}  // namespace kestan::search
