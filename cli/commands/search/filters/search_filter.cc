// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/search_filter.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "cli/commands/search/filters/day.h"
#include "cli/commands/search/filters/file_type.h"
#include "cli/commands/search/filters/lower_case.h"
#include "cli/console/message.h"

namespace kestan_cli {
namespace {

using kestan::search::FilteredDocument;

std::int64_t DayOf(const QueryFilter& filter, std::time_t now) {
  const auto start = StartOfDay(filter.value, now);
  if (start) return *start;
  const std::string key = filter.key == FilterKey::kAfter ? "after:" : "before:";
  throw CommandError(key + " takes a day as 2024-03-01, 2024-03, 2024, today or yesterday, not " +
                     Quoted(filter.value));
}

WordRun WordsOf(const QueryFilter& filter) {
  WordRun words(filter.value);
  if (!words.empty()) return words;
  throw CommandError(std::string(filter.key == FilterKey::kTitle ? "title:" : "from:") +
                     " takes words, and " + Quoted(filter.value) + " holds no letters or digits");
}

std::string TypeOf(std::string_view value) {
  if (value.size() > 1 && value.front() == '.') value.remove_prefix(1);
  return LowerCaseOfAll(value);
}

// Returns whether the document `name` is of `type`, or a part of something that is. The first
// `container_bytes` of the name are the path of the file that it is a part of; 0: it is none.
bool IsDocumentOfType(std::string_view name, std::size_t container_bytes, std::string_view type) {
  if (container_bytes == 0) return IsFileOfType(name, type);
  if (IsFileOfType(name.substr(0, container_bytes), type)) return true;
  for (std::string_view rest = name.substr(container_bytes); !rest.empty();) {
    rest.remove_prefix(1);  // "#"
    const std::string_view part = rest.substr(0, rest.find('#'));
    if (!part.empty() && IsFileOfType(part, type)) return true;
    rest.remove_prefix(part.size());
  }
  return false;
}

bool OneIsEnough(FilterKey key) {
  return key == FilterKey::kPath || key == FilterKey::kType || key == FilterKey::kFrom;
}

}  // namespace

// What was read of a document, each once.
struct SearchFilter::Read {
  const FilteredDocument& document;
  std::optional<DocumentFacts> facts{};
  std::optional<std::string> title{};

  const DocumentFacts& Facts() {
    if (!facts) facts = FactsOf(std::string(document.name()), document.host_data());
    return *facts;
  }
  const std::string& Title() {
    if (!title) title = document.title();
    return *title;
  }
};

SearchFilter::SearchFilter(const std::vector<QueryFilter>& filters, std::time_t now) {
  for (const QueryFilter& filter : filters) tests_.push_back(TestOf(filter, now));
  std::stable_sort(tests_.begin(), tests_.end(),
                   [](const Test& left, const Test& right) { return left.key < right.key; });
}

SearchFilter::Test SearchFilter::TestOf(const QueryFilter& filter, std::time_t now) {
  Test test;
  test.key = filter.key;
  test.excludes = filter.excludes;
  test.value = filter.value;
  switch (filter.key) {
    case FilterKey::kPath:
      test.path = PathPattern(filter.value);
      break;
    case FilterKey::kType:
      test.value = TypeOf(filter.value);
      break;
    case FilterKey::kAfter:
    case FilterKey::kBefore:
      test.day_start = DayOf(filter, now);
      break;
    case FilterKey::kTitle:
    case FilterKey::kFrom:
      test.words = WordsOf(filter);
      break;
  }
  return test;
}

bool SearchFilter::HasPath(const Test& test, Read* read) const {
  const std::string name(read->document.name());
  // A path from the root is compared with one from the root.
  return test.path.Matches(test.value.front() == '/' ? name : names_(name));
}

bool SearchFilter::Holds(const Test& test, Read* read) const {
  switch (test.key) {
    case FilterKey::kPath:
      return HasPath(test, read);
    case FilterKey::kType: {
      const DocumentFacts& facts = read->Facts();
      if (facts.is_mail && (test.value == "mail" || test.value == "text")) {
        return test.value == "mail";
      }
      return IsDocumentOfType(read->document.name(), facts.container.size(), test.value);
    }
    case FilterKey::kAfter:
      return read->Facts().date && *read->Facts().date >= test.day_start;
    case FilterKey::kBefore:
      return read->Facts().date && *read->Facts().date < test.day_start;
    case FilterKey::kTitle:
      return test.words.StandsIn(read->Title());
    case FilterKey::kFrom:
      return test.words.StandsIn(read->Facts().from);
  }
  return false;
}

bool SearchFilter::Passes(const FilteredDocument& document) const {
  Read read{document};
  for (std::size_t i = 0; i < tests_.size();) {
    const FilterKey key = tests_[i].key;
    bool is_asked = false;  // whether one of those in which one is enough must hold
    bool holds = false;
    for (; i < tests_.size() && tests_[i].key == key; ++i) {
      const bool one_is_enough = OneIsEnough(key) && !tests_[i].excludes;
      if (one_is_enough && holds) continue;
      const bool passes = Holds(tests_[i], &read) != tests_[i].excludes;
      if (!one_is_enough && !passes) return false;
      is_asked = is_asked || one_is_enough;
      holds = holds || (one_is_enough && passes);
    }
    if (is_asked && !holds) return false;
  }
  return true;
}

std::string SearchFilter::QueryForTitles() const {
  std::string words;
  for (const Test& test : tests_) {
    if (test.key != FilterKey::kTitle || test.excludes) continue;
    words += (words.empty() ? "" : " AND ") + test.words.AsQuery();
  }
  return words.empty() ? "" : "(" + words + ") OR NOT (" + words + ")";
}

}  // namespace kestan_cli
