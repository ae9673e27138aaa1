// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/analyzer.h>

#include <exception>
#include <new>

#include "search/text/analyzer/analysis.h"
#include "search/text/analyzer/word_encoding.h"

namespace kestan::search {
namespace {

template <typename Work>
auto Caught(const Work& work) -> decltype(work()) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return Status(StatusCode::kOutOfMemory, "out of memory");
  } catch (const std::exception& error) {
    return Status(StatusCode::kSystem, error.what());
  } catch (...) {  // by a function of the host's
    return Status(StatusCode::kSystem, "a function of the host threw what is no std::exception");
  }
}

}  // namespace

Result<std::string> Analyzer::Analyze(std::string_view utf8) const {
  return Caught([&]() -> Result<std::string> { return AnalyzedWords(utf8); });
}

Status Analyzer::ForEachWord(std::string_view utf8,
                             const std::function<bool(const AnalyzedWord&)>& visit) const {
  return Caught([&] {
    ForEachAnalyzedWord(utf8, visit);
    return Status();
  });
}

Result<std::vector<WordGroup>> Analyzer::AnalyzeQuery(std::string_view utf8) const {
  return Caught([&]() -> Result<std::vector<WordGroup>> { return AnalyzedGroups(utf8); });
}

Result<std::string> Analyzer::Decode(std::string_view text) {
  return Caught([&]() -> Result<std::string> { return DecodedWords(text); });
}

}  // namespace kestan::search
