// The three texts that an index keeps for a document beside its words.
#ifndef KESTAN_CLI_INDEX_SIDE_RECORD_H_
#define KESTAN_CLI_INDEX_SIDE_RECORD_H_

#include <kestan/kestan.h>
#include <kestan/search.h>

#include <array>
#include <string>

namespace kestan_cli {

// One kind of these texts, and where it is kept. The engine's functions take the name of a
// document. `get` returns null if there is no such text, the others return 0 on success.
struct SideRecord {
  const char* name;     // of its commands, and in JSON
  const char* noun;     // in messages
  const char* example;  // a text of this kind, for help
  kestan::search::DocumentField field;
  std::string kestan::search::DocumentInfo::*text;
  char* (Kestan::*get)(const char* document);
  int (Kestan::*put)(const char* document, const char* text);
  int (Kestan::*remove)(const char* document);
};

inline constexpr std::array kSideRecords{
    SideRecord{"title", "title", "Things to do", kestan::search::DocumentField::kTitle,
               &kestan::search::DocumentInfo::title, &Kestan::DBGetTitle, &Kestan::DBPutTitle,
               &Kestan::DBDelTitle},
    SideRecord{"summary", "summary", "What is left for this week",
               kestan::search::DocumentField::kSummary, &kestan::search::DocumentInfo::summary,
               &Kestan::DBGetSummary, &Kestan::DBPutSummary, &Kestan::DBDelSummary},
    SideRecord{"user", "user record", "reviewed=yes", kestan::search::DocumentField::kHostData,
               &kestan::search::DocumentInfo::host_data, &Kestan::DBGetUser, &Kestan::DBPutUser,
               &Kestan::DBDelUser}};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_SIDE_RECORD_H_
