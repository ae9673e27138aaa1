// The three texts that an index keeps for a document beside its words.
#ifndef KESTAN_CLI_INDEX_SIDE_RECORD_H_
#define KESTAN_CLI_INDEX_SIDE_RECORD_H_

#include <kestan/kestan.h>

#include <array>

namespace kestan_cli {

// One kind of these texts, and the engine's functions for it. Each function takes the name of a
// document. `get` returns null if there is no such text, the others return 0 on success.
struct SideRecord {
  const char* name;     // of its commands, and in JSON
  const char* noun;     // in messages
  const char* example;  // a text of this kind, for help
  char* (Kestan::*get)(const char* document);
  int (Kestan::*put)(const char* document, const char* text);
  int (Kestan::*remove)(const char* document);
};

inline constexpr std::array kSideRecords{
    SideRecord{"title", "title", "Things to do", &Kestan::DBGetTitle, &Kestan::DBPutTitle,
               &Kestan::DBDelTitle},
    SideRecord{"summary", "summary", "What is left for this week", &Kestan::DBGetSummary,
               &Kestan::DBPutSummary, &Kestan::DBDelSummary},
    SideRecord{"user", "user record", "reviewed=yes", &Kestan::DBGetUser, &Kestan::DBPutUser,
               &Kestan::DBDelUser}};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_SIDE_RECORD_H_
