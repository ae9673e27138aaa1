// SPDX-License-Identifier: GPL-3.0-or-later
// A document as a host hands it in.
#ifndef KESTAN_SEARCH_DOCUMENT_H_
#define KESTAN_SEARCH_DOCUMENT_H_

#include <string>

namespace kestan::search {

// Strings may hold any bytes but where it says otherwise; an empty one is the same as none.
struct Document {
  std::string name;     // its key in the index: not empty, without NUL, up to 4096 bytes
  std::string text;     // UTF-8 as people write it; cleaned and split into words as queries are
  std::string words;    // words that are taken as they are, separated by white space, after `text`
  std::string title;    // UTF-8, shown with hits
  std::string summary;  // UTF-8, shown where a host has no text at hand
  std::string host_data;  // whatever the host wants back with the document
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_DOCUMENT_H_
