// SPDX-License-Identifier: GPL-3.0-or-later
// Dictionaries made of maps and read into maps.
#ifndef KESTAN_TESTS_SEARCH_SEGMENT_DICTIONARY_FILES_H_
#define KESTAN_TESTS_SEARCH_SEGMENT_DICTIONARY_FILES_H_

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <tuple>

#include "search/segment/term_dictionary.h"

namespace kestan::search {

// What a dictionary says of a term: documents, offset of the record, bytes of its value.
using TermFacts = std::tuple<std::uint32_t, std::uint64_t, std::uint32_t>;
using TermMap = std::map<std::string, TermFacts>;

inline TermFacts FactsOf(const TermEntry& entry) {
  return {entry.documents, entry.place.offset, entry.place.value_bytes};
}

// Some terms whose records lie side by side, but for a few that have none or lie elsewhere.
inline TermMap SomeTerms(int count) {
  TermMap terms;
  for (int i = 0; i < count; ++i) terms["term" + std::to_string(i * 7919 % 100003)] = {};
  std::uint64_t offset = 4096;
  std::uint32_t i = 0;
  for (auto& [term, facts] : terms) {
    if (++i % 50 == 0) continue;
    if (i % 60 == 0) offset = i % 120 == 0 ? offset + 512 : offset / 2;
    facts = {i % 90 + 1, offset, i % 300};
    offset += term.size() + i % 300;
  }
  return terms;
}

inline Result<FileSummary> WriteDictionary(const TermMap& terms, const std::string& path) {
  TermDictionaryWriter writer;
  Status status = writer.Create(path);
  if (!status.ok()) return status;
  for (const auto& [term, facts] : terms) {
    const auto [documents, offset, value_bytes] = facts;
    const auto key_bytes = offset == 0 ? 0 : static_cast<std::uint32_t>(term.size());
    writer.Add({term, documents, {offset, key_bytes, value_bytes}});
  }
  return writer.Finish();
}

inline Result<TermDictionary> OpenDictionary(const std::string& path) {
  Result<std::shared_ptr<const FileBytes>> file =
      FileBytes::Open(path, std::filesystem::file_size(path));
  if (!file.ok()) return file.status();
  return TermDictionary::Open(*file);
}

// Reads all terms from `from` on by ForEach().
inline Result<TermMap> ReadDictionary(const TermDictionary& dictionary,
                                      std::string_view from = "") {
  TermMap terms;
  const Status status = dictionary.ForEach(from, [&](const TermEntry& entry) {
    terms[std::string(entry.term)] = FactsOf(entry);
    return true;
  });
  if (!status.ok()) return status;
  return terms;
}

}  // namespace kestan::search

#endif  // KESTAN_TESTS_SEARCH_SEGMENT_DICTIONARY_FILES_H_
