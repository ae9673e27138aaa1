// SPDX-License-Identifier: GPL-3.0-or-later
#include "c/input.h"

#include <cstring>
#include <utility>

namespace kestan::c {
namespace {

// No text is longer; a length beyond it may be no length at all.
constexpr std::size_t kMaxBytes = std::size_t{1} << 30;

// Beyond it, scores may be no numbers any more.
constexpr double kMaxWeight = 1e6;

bool IsWeight(double value) { return value >= 0 && value <= kMaxWeight; }

}  // namespace

Status Read(const Input& input, std::string_view* view) {
  const std::string what = input.what;
  if (input.bytes == nullptr && input.length != 0) return Invalid(what + " is null");
  if (input.length == KESTAN_ZERO_TERMINATED) {
    *view = std::string_view(input.bytes, std::strlen(input.bytes));
    return {};
  }
  if (input.length > kMaxBytes) return Invalid(what + " has a length of more than 1 GB");
  *view = input.length == 0 ? std::string_view("") : std::string_view(input.bytes, input.length);
  return {};
}

Status ReadPath(const char* path, std::size_t length, std::string* copy) {
  std::string_view view;
  Status status = Read({"the path", path, length}, &view);
  if (!status.ok()) return status;
  if (view.empty()) return Invalid("the path is empty");
  if (view.find('\0') != std::string_view::npos) return Invalid("the path has a zero byte");
  *copy = view;
  return {};
}

Status CheckVersion(const char* what, unsigned version, unsigned known) {
  if (version == known) return {};
  return Invalid(std::string(what) + " of version " + std::to_string(version) +
                 ", but this library knows version " + std::to_string(known));
}

Status Read(const kestan_writer_options* options, search::WriterOptions* read) {
  if (options == nullptr) return {};
  Status status = CheckVersion("the options are", options->version, KESTAN_WRITER_OPTIONS_VERSION);
  std::string_view language;
  if (status.ok()) {
    status = Read({"the language", options->language, options->language_length}, &language);
  }
  if (!status.ok()) return status;
  if (options->merge_factor < 2) return Invalid("the merge factor is less than 2");
  if (options->memory_budget == 0) return Invalid("the memory budget is 0");
  read->create = options->create != 0;
  read->sync = options->sync != 0;
  read->with_positions = options->with_positions != 0;
  read->threads = options->threads;
  read->merge_factor = options->merge_factor;
  read->memory_budget = options->memory_budget;
  read->language = language;
  return {};
}

Status Read(const kestan_search_options* options, search::SearchOptions* read) {
  if (options == nullptr) return {};
  Status status = CheckVersion("the options are", options->version, KESTAN_SEARCH_OPTIONS_VERSION);
  if (!status.ok()) return status;
  switch (options->words) {
    case KESTAN_WORDS_BEST:
      read->words = search::WordsMean::kBest;
      break;
    case KESTAN_WORDS_ALL:
      read->words = search::WordsMean::kAll;
      break;
    case KESTAN_WORDS_ANY:
      read->words = search::WordsMean::kAny;
      break;
    default:
      return Invalid("'words' is none of KESTAN_WORDS_BEST, KESTAN_WORDS_ALL, KESTAN_WORDS_ANY");
  }
  if (!IsWeight(options->k1)) return Invalid("k1 is not between 0 and 1,000,000");
  if (!IsWeight(options->b) || options->b > 1) return Invalid("b is not between 0 and 1");
  if (!IsWeight(options->proximity_bonus) || !IsWeight(options->opening_bonus)) {
    return Invalid("a bonus is not between 0 and 1,000,000");
  }
  read->with_titles = options->with_titles != 0;
  read->strict = options->strict != 0;
  read->limit = options->limit;
  read->k1 = options->k1;
  read->b = options->b;
  read->proximity_bonus = options->proximity_bonus;
  read->opening_bonus = options->opening_bonus;
  return {};
}

}  // namespace kestan::c
