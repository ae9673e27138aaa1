// SPDX-License-Identifier: GPL-3.0-or-later
// An index with everything that an index can hold, and all that a reader says of it.
#ifndef KESTAN_TESTS_SEARCH_UPKEEP_KEPT_INDEX_H_
#define KESTAN_TESTS_SEARCH_UPKEEP_KEPT_INDEX_H_

#include <gtest/gtest.h>
#include <kestan/search.h>

#include <string>
#include <vector>

namespace kestan_tests {

// Makes an index of several segments, some with edits: documents "n0" to "n11" without "n1", "n6"
// renamed to "other", words that look like keys of other records, texts, properties.
inline void MakeKeptIndex(const std::string& folder, bool with_positions = true) {
  using kestan::search::Document;
  kestan::search::WriterOptions options;
  options.with_positions = with_positions;
  options.threads = 1;
  auto writer = kestan::search::IndexWriter::Open(folder, options);
  ASSERT_TRUE(writer.ok()) << writer.status().ToString();
  for (int i = 0; i < 12; ++i) {
    const std::string digits = std::to_string(i);
    Document document;
    document.name = "n" + digits;
    document.words = "Hello hello hello t-shirt d-day e-mail c-ab w-boson x" + digits;
    for (int j = 0; j < i; ++j) document.words += " more" + std::to_string(j);
    if (i % 2 == 0) document.title = "Title " + digits;
    if (i % 3 == 0) document.summary = "Summary\n" + digits;
    document.host_data = std::string("host\0", 5) + digits;
    ASSERT_TRUE(writer->Add(document).ok());
    if (i % 4 == 3) {
      ASSERT_TRUE(writer->Commit().ok());
    }
  }
  ASSERT_TRUE(writer->Remove("n1").ok());
  ASSERT_TRUE(writer->Rename("n6", "other").ok());
  ASSERT_TRUE(writer->SetField("n7", kestan::search::DocumentField::kTitle, "later").ok());
  writer->SetProperty("key", std::string("value \\ \0\n", 10));
  writer->SetProperty("roots", "/home/me");
  ASSERT_TRUE(writer->Commit().ok());
}

// Returns what a reader says of the index at `path`, scores among it, a line each. "host" of each
// document, and its time, are part of that.
inline std::vector<std::string> Sayings(const std::string& path) {
  std::vector<std::string> lines;
  const auto reader = kestan::search::IndexReader::Open(path);
  if (!reader.ok()) return {reader.status().ToString()};
  const auto status = reader->ForEachDocument([&](const kestan::search::DocumentInfo& info) {
    lines.push_back(info.name + "|" + std::to_string(info.words) + "|" +
                    std::to_string(info.added) + "|" + info.title + "|" + info.summary + "|" +
                    info.host_data);
    return true;
  });
  EXPECT_TRUE(status.ok()) << status.ToString();
  const auto terms = reader->Terms("");
  EXPECT_TRUE(terms.ok());
  for (const auto& term : *terms) lines.push_back(term.term + std::to_string(term.documents));
  for (const char* query : {"hello", "e-mail x3", "\"d-day e-mail\"", "more1 more5", "x*"}) {
    kestan::search::SearchOptions options;
    options.limit = 0;
    const auto results = reader->Search(query, options);
    EXPECT_TRUE(results.ok()) << results.status().ToString();
    for (const auto& hit : results->hits) {
      lines.push_back(std::string(query) + " " + hit.name + " " + std::to_string(hit.score));
    }
  }
  return lines;
}

// Returns how many faults a check finds, with the findings in the test's output.
inline std::uint64_t Faults(const std::string& path) {
  const auto report = kestan::search::CheckIndex(path);
  EXPECT_TRUE(report.ok()) << report.status().ToString();
  if (!report.ok()) return 1;
  for (const auto& finding : report->findings) {
    if (finding.is_fault) {
      ADD_FAILURE() << finding.file << " " << finding.key << ": " << finding.text;
    }
  }
  return report->faults;
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SEARCH_UPKEEP_KEPT_INDEX_H_
