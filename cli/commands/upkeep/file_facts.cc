// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance.h>
#include <kestan/results.h>

#include "cli/commands/upkeep/index_facts.h"
#include "cli/index/index_errors.h"
#include "cli/index/index_examination.h"

namespace kestan_cli {
namespace {

using kestan::IndexStatistics;
using kestan::RecordBytes;

std::vector<Fact> CountsIn(const IndexStatistics& index) {
  return {{"documents", "documents", index.documents},
          {"words", "words", index.words - index.unused},
          {"unused_words", "words of no document", index.unused},
          {"postings", "postings", index.postings},
          {"positions", "positions", index.positions},
          {"highest_code", "highest document code", index.highest_code},
          {"removed_codes", "codes of removed documents", index.removed_codes},
          {"reusable_codes", "reusable codes", index.reusable_codes},
          {"option_flags", "option flags", index.option_flags}};
}

std::vector<Fact> SizesIn(const IndexStatistics& index) {
  const auto bytes = [](const RecordBytes& kind) { return kind.key_bytes + kind.value_bytes; };
  return {{"file", "file", index.file_bytes},
          {"posting_records", "posting records", bytes(index.posting_records)},
          {"document_records", "document records", bytes(index.document_records)},
          {"name_records", "name records", bytes(index.name_records)},
          {"titles", "titles", bytes(index.titles)},
          {"summaries", "summaries", bytes(index.summaries)},
          {"user_records", "user records", bytes(index.user_records)},
          {"word_lists", "word lists", bytes(index.word_lists)},
          {"system_records", "system records", bytes(index.system_records)},
          {"other_records", "other records", bytes(index.other_records)},
          {"reclaimable", "a shrink would give back about", index.reclaimable_bytes}};
}

std::vector<FrequencyRow> CurveOf(const IndexStatistics& index) {
  std::vector<FrequencyRow> rows;
  std::uint64_t low = 1;
  std::uint64_t high = 1;
  for (const kestan::FrequencyClass& group : index.frequencies) {
    if (group.words != 0) rows.push_back({low, high, group.words, group.postings});
    low = high + 1;
    high *= 2;
  }
  return rows;
}

}  // namespace

IndexFacts FactsOfFile(const std::string& path) {
  kestan::IndexFile file;
  OpenIndexFile(file, path);
  const IndexStatistics index = kestan::ReadStatistics(file.store());
  if (index.file_error != kestan::StoreError::kNone) throw CannotRead(path, index.file_error);
  IndexFacts facts;
  facts.counts = CountsIn(index);
  facts.positions_kept = kestan::KeepsPositions(index.option_flags);
  facts.sizes = SizesIn(index);
  facts.frequencies = CurveOf(index);
  return facts;
}

}  // namespace kestan_cli
