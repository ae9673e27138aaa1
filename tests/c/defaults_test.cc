// SPDX-License-Identifier: GPL-3.0-or-later
// The defaults of C are those of C++, by the macros and by the functions.
#include <gtest/gtest.h>
#include <kestan/c.h>
#include <kestan/search/index_reader.h>
#include <kestan/search/index_writer.h>

#include <cstring>

namespace {

using kestan::search::SearchOptions;
using kestan::search::WordsMean;
using kestan::search::WriterOptions;

void ExpectDefaults(const kestan_writer_options& options) {
  const WriterOptions expected;
  EXPECT_EQ(options.version, unsigned{KESTAN_WRITER_OPTIONS_VERSION});
  EXPECT_EQ(options.create != 0, expected.create);
  EXPECT_EQ(options.sync != 0, expected.sync);
  EXPECT_EQ(options.with_positions != 0, expected.with_positions);
  EXPECT_EQ(options.threads, expected.threads);
  EXPECT_EQ(options.merge_factor, expected.merge_factor);
  EXPECT_EQ(options.memory_budget, expected.memory_budget);
  EXPECT_EQ(options.language_length, expected.language.size());
  EXPECT_EQ(options.progress, nullptr);
  EXPECT_EQ(options.progress_payload, nullptr);
}

void ExpectDefaults(const kestan_search_options& options) {
  const SearchOptions expected;
  EXPECT_EQ(options.version, unsigned{KESTAN_SEARCH_OPTIONS_VERSION});
  EXPECT_EQ(expected.words, WordsMean::kBest);
  EXPECT_EQ(options.words, int{KESTAN_WORDS_BEST});
  EXPECT_EQ(options.with_titles != 0, expected.with_titles);
  EXPECT_EQ(options.strict != 0, expected.strict);
  EXPECT_EQ(options.limit, expected.limit);
  EXPECT_EQ(options.k1, expected.k1);
  EXPECT_EQ(options.b, expected.b);
  EXPECT_EQ(options.proximity_bonus, expected.proximity_bonus);
  EXPECT_EQ(options.opening_bonus, expected.opening_bonus);
  EXPECT_EQ(options.filter, nullptr);
  EXPECT_EQ(options.filter_payload, nullptr);
}

TEST(DefaultsTest, OptionsOfWriters) {
  kestan_writer_options options = KESTAN_WRITER_OPTIONS_INIT;
  ExpectDefaults(options);
  std::memset(&options, 0x5a, sizeof(options));
  ASSERT_EQ(kestan_writer_options_init(&options, KESTAN_WRITER_OPTIONS_VERSION), 0);
  ExpectDefaults(options);
}

TEST(DefaultsTest, OptionsOfSearches) {
  kestan_search_options options = KESTAN_SEARCH_OPTIONS_INIT;
  ExpectDefaults(options);
  std::memset(&options, 0x5a, sizeof(options));
  ASSERT_EQ(kestan_search_options_init(&options, KESTAN_SEARCH_OPTIONS_VERSION), 0);
  ExpectDefaults(options);
}

TEST(DefaultsTest, DocumentsAndStatisticsAreEmpty) {
  kestan_document document;
  kestan_statistics statistics;
  std::memset(&document, 0x5a, sizeof(document));
  std::memset(&statistics, 0x5a, sizeof(statistics));
  ASSERT_EQ(kestan_document_init(&document, KESTAN_DOCUMENT_VERSION), 0);
  ASSERT_EQ(kestan_statistics_init(&statistics, KESTAN_STATISTICS_VERSION), 0);
  EXPECT_EQ(document.version, unsigned{KESTAN_DOCUMENT_VERSION});
  EXPECT_EQ(statistics.version, unsigned{KESTAN_STATISTICS_VERSION});
  EXPECT_EQ(document.name, nullptr);
  const size_t lengths = document.name_length + document.text_length + document.title_length +
                         document.summary_length + document.data_length;
  EXPECT_EQ(lengths, 0u);
  EXPECT_EQ(statistics.documents + statistics.words + statistics.bytes, 0u);
}

}  // namespace
