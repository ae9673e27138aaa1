// SPDX-License-Identifier: GPL-3.0-or-later
// What the index knows of a document beside its words.
#ifndef KESTAN_CLI_COMMANDS_SEARCH_FILTERS_DOCUMENT_FACTS_H_
#define KESTAN_CLI_COMMANDS_SEARCH_FILTERS_DOCUMENT_FACTS_H_

#include <cstdint>
#include <optional>
#include <string>

namespace kestan_cli {

struct DocumentFacts {
  // When a message was sent or, without its date, the file was last changed; in seconds since 1970.
  std::optional<std::int64_t> date;
  std::string from;       // the sender of a message, as it is shown
  bool is_mail = false;   // it has a date, a sender or somebody whom it is for
  std::string container;  // the path of the file of which it is a part; empty if it is none
};

// Returns what the first line of `host_data` tells of the document `name`; nothing if no file is
// behind it.
DocumentFacts FactsOf(const std::string& name, const std::string& host_data);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_SEARCH_FILTERS_DOCUMENT_FACTS_H_
