// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search.h>

#include <algorithm>

#include "cli/commands/upkeep/index_facts.h"
#include "cli/commands/upkeep/option_command.h"
#include "cli/console/json.h"
#include "cli/index/index_errors.h"
#include "cli/index/opened_reader.h"

namespace kestan_cli {
namespace {

using kestan::search::IndexReader;
using kestan::search::IndexStatistics;
using kestan::search::TermInfo;

std::vector<Fact> SizesIn(const IndexStatistics& index) {
  return {{"folder", "folder", index.bytes},
          {"segments", "index files of segments", index.segment_bytes},
          {"term_dictionaries", "term dictionaries", index.term_dictionary_bytes},
          {"document_tables", "document tables", index.document_table_bytes},
          {"edits", "edits", index.edit_bytes}};
}

// Sorts `words` into classes, of which each takes words of up to twice as many documents as the one
// before.
std::vector<FrequencyRow> CurveOf(const std::vector<TermInfo>& words) {
  std::vector<FrequencyRow> rows{{1, 1, 0, 0}};
  for (const TermInfo& word : words) {
    while (rows.back().high < word.documents) {
      rows.push_back({rows.back().high + 1, 2 * rows.back().high, 0, 0});
    }
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const FrequencyRow& each) {
      return word.documents <= each.high;
    });
    ++row->words;
    row->postings += word.documents;
  }
  rows.erase(std::remove_if(rows.begin(), rows.end(),
                            [](const FrequencyRow& row) { return row.words == 0; }),
             rows.end());
  return rows;
}

// Returns a text that may be a list of its bytes.
std::string TextOf(const Json& json) {
  if (json.is_string()) return json.get<std::string>();
  std::string text;
  for (const Json& byte : json) {
    if (byte.is_number_unsigned()) text += static_cast<char>(byte.get<unsigned>());
  }
  return text;
}

// Adds the options that the texts of `root` under `key` stand for.
void AddOptions(const Json& root, const char* key, const std::string& option,
                std::vector<std::string>* options) {
  if (!root.contains(key) || !root[key].is_array()) return;
  for (const Json& text : root[key]) options->push_back(option + "=" + TextOf(text));
}

RememberedRoot RootOf(const Json& json) {
  RememberedRoot root;
  if (json.contains("path")) root.path = TextOf(json["path"]);
  AddOptions(json, "include", "--include", &root.options);
  AddOptions(json, "exclude", "--exclude", &root.options);
  AddOptions(json, "converters", "--converter", &root.options);
  if (json.contains("stop_words")) {
    root.options.push_back("--stop-words=" + TextOf(json["stop_words"]));
  }
  for (const char* flag : {"strip_encoded", "no_ignore", "archives", "prune"}) {
    std::string option = std::string("--") + flag;
    std::replace(option.begin(), option.end(), '_', '-');
    if (json.contains(flag) && json[flag] == true) root.options.push_back(option);
  }
  return root;
}

// What is not as `kestan index` writes it tells of no roots: `kestan index` reports it.
std::vector<RememberedRoot> RootsIn(const std::string& property) {
  const Json json = Json::parse(property, nullptr, false);
  std::vector<RememberedRoot> roots;
  if (!json.is_object() || !json.contains("roots") || !json["roots"].is_array()) return roots;
  for (const Json& each : json["roots"]) {
    if (each.is_object()) roots.push_back(RootOf(each));
  }
  return roots;
}

}  // namespace

IndexFacts FactsOfFolder(const std::string& path) {
  const IndexReader reader = OpenReader(path);
  const IndexStatistics index = reader.Statistics();
  const std::vector<TermInfo> words = ValueOf(reader.Terms(""), path);
  std::uint64_t postings = 0;
  for (const TermInfo& word : words) postings += word.documents;
  IndexFacts facts;
  facts.counts = {{"documents", "documents", index.documents},
                  {"removed_documents", "removed documents", index.removed_documents},
                  {"segments", "segments", index.segments},
                  {"words", "words", words.size()},
                  {"postings", "postings", postings},
                  {"occurrences", "words of all texts", index.words},
                  {"option_flags", "option flags", FlagsOf(reader, path)}};
  facts.positions_kept = index.with_positions;
  facts.language = ValueOf(reader.Property("language"), path);
  if (facts.language.empty()) facts.language = "english";
  facts.sizes = SizesIn(index);
  facts.frequencies = CurveOf(words);
  facts.is_folder = true;
  facts.roots = RootsIn(ValueOf(reader.Property("roots"), path));
  return facts;
}

}  // namespace kestan_cli
