// The three texts that an index keeps beside the words of a document.
#ifndef KESTAN_CLI_INDEX_SIDE_RECORD_H_
#define KESTAN_CLI_INDEX_SIDE_RECORD_H_

#include <kestan/kestan.h>

#include <array>

namespace kestan_cli {

// One of them, and what the engine does with it.
struct SideRecord {
  const char* command;  // that changes it
  const char* title;    // as people call it
  char* (Kestan::*get)(const char* name);
  int (Kestan::*put)(const char* name, const char* text);
  int (Kestan::*remove)(const char* name);
};

inline constexpr SideRecord kTitle{"title", "title", &Kestan::DBGetTitle, &Kestan::DBPutTitle,
                                   &Kestan::DBDelTitle};
inline constexpr SideRecord kSummary{"summary", "summary", &Kestan::DBGetSummary,
                                     &Kestan::DBPutSummary, &Kestan::DBDelSummary};
inline constexpr SideRecord kUser{"user", "user record", &Kestan::DBGetUser, &Kestan::DBPutUser,
                                  &Kestan::DBDelUser};

inline constexpr std::array kSideRecords{kTitle, kSummary, kUser};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_SIDE_RECORD_H_
