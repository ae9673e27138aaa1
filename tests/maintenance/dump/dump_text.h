// SPDX-License-Identifier: GPL-3.0-or-later
// Dumps as one text, for those who test or fuzz them.
#ifndef KESTAN_TESTS_MAINTENANCE_DUMP_DUMP_TEXT_H_
#define KESTAN_TESTS_MAINTENANCE_DUMP_DUMP_TEXT_H_

#include <kestan/maintenance/dump.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace kestan_tests {

// Gives the lines of a text; a last one may lack its line feed.
class LinesOfText {
 public:
  // Borrows `text`.
  explicit LinesOfText(std::string_view text) : left_(text) {}

  bool operator()(std::string_view* line) {
    if (left_.empty()) return false;
    *line = left_.substr(0, left_.find('\n'));
    left_.remove_prefix(std::min(line->size() + 1, left_.size()));
    return true;
  }

 private:
  std::string_view left_;
};

// Dumps the open store into `*text`.
inline kestan::StoreError DumpInto(Database& store, std::string* text) {
  return kestan::DumpIndex(store, [=](std::string_view line) { text->append(line).append("\n"); });
}

// Loads `text` into the open store.
//   Returns  what it complained of, nothing if it worked.
inline std::string LoadInto(Database& store, std::string_view text) {
  std::string complaint;
  const bool loaded = kestan::LoadIndex(LinesOfText(text), store,
                                        [&](std::string_view line) { complaint += line; });
  return loaded == complaint.empty() ? complaint : "a complaint without a failure or the other way";
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_MAINTENANCE_DUMP_DUMP_TEXT_H_
