// SPDX-License-Identifier: GPL-3.0-or-later
// The three texts that an index keeps for a document beside its words.
#ifndef KESTAN_CLI_INDEX_SIDE_RECORD_H_
#define KESTAN_CLI_INDEX_SIDE_RECORD_H_

#include <kestan/search.h>

#include <array>
#include <string>

namespace kestan_cli {

// One kind of these texts, and where it is kept.
struct SideRecord {
  const char* name;     // of its commands, and in JSON
  const char* noun;     // in messages
  const char* example;  // a text of this kind, for help
  kestan::search::DocumentField field;
  std::string kestan::search::DocumentInfo::*text;
};

inline constexpr std::array kSideRecords{
    SideRecord{"title", "title", "Things to do", kestan::search::DocumentField::kTitle,
               &kestan::search::DocumentInfo::title},
    SideRecord{"summary", "summary", "What is left for this week",
               kestan::search::DocumentField::kSummary, &kestan::search::DocumentInfo::summary},
    SideRecord{"user", "user record", "reviewed=yes", kestan::search::DocumentField::kHostData,
               &kestan::search::DocumentInfo::host_data}};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_SIDE_RECORD_H_
