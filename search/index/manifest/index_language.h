// SPDX-License-Identifier: GPL-3.0-or-later
// The language of an index, as its manifest has it.
#ifndef KESTAN_SEARCH_INDEX_MANIFEST_INDEX_LANGUAGE_H_
#define KESTAN_SEARCH_INDEX_MANIFEST_INDEX_LANGUAGE_H_

#include <kestan/search/document.h>
#include <kestan/search/status.h>

#include <string>
#include <string_view>
#include <utility>

#include "search/index/manifest/manifest.h"
#include "search/text/language.h"
#include "search/vocabulary/language_guess.h"

namespace kestan::search {

// The property of an index that names its language.
inline constexpr std::string_view kLanguageProperty = "language";

// Returns the language of the index with this manifest; null if its words have no other forms.
const Language* LanguageOf(const Manifest& manifest);

// Returns kInvalidArgument unless `wanted` is a language, "none" or "".
Status CheckLanguage(const std::string& wanted);

// Finds the language of an index that is being written.
class IndexLanguage {
 public:
  using Properties = decltype(Manifest::properties);

  // `wanted` is the language that the index is to have, "none", or "": its own or a guess.
  explicit IndexLanguage(std::string wanted) : wanted_(std::move(wanted)) {}

  // Begins with the properties that the index has.
  void Start(Properties* properties);

  // Looks at a document that is added to an index without documents.
  void Add(const Document& document);

  // Puts the language into the properties that are to be committed, if they lack it and documents
  // were added.
  void Settle(Properties* properties) const;

 private:
  const std::string wanted_;
  LanguageGuess guess_;
  bool has_documents_ = false;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_MANIFEST_INDEX_LANGUAGE_H_
