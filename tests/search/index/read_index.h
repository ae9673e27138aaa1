// SPDX-License-Identifier: GPL-3.0-or-later
// An index folder read without a reader: all that it says of its documents.
#ifndef KESTAN_TESTS_SEARCH_INDEX_READ_INDEX_H_
#define KESTAN_TESTS_SEARCH_INDEX_READ_INDEX_H_

#include <map>
#include <set>
#include <string>
#include <vector>

namespace kestan_tests {

struct ReadDocument {
  std::string title;
  std::string summary;
  std::string host_data;
  std::map<std::string, std::vector<unsigned>> words;  // with their positions

  bool operator==(const ReadDocument& other) const {
    return title == other.title && summary == other.summary && host_data == other.host_data &&
           words == other.words;
  }
};

using ReadDocuments = std::map<std::string, ReadDocument>;

// Returns the living documents of the index in `folder` by their names, and checks that each name
// lives once, that counts agree and that every file is the one that the manifest means. Throws
// std::runtime_error where that is not so.
ReadDocuments ReadIndex(const std::string& folder);

// Returns the words of `text` as ReadIndex() returns those of a document.
std::map<std::string, std::vector<unsigned>> WordsOf(const std::string& text);

// Makes the index in `folder` one of the time before the Analyzer: its words are letters of ASCII.
void MakeOlder(const std::string& folder);

// Returns the names of all files in `folder`, and of those that the manifest names with the
// manifest and the lock.
std::set<std::string> FilesIn(const std::string& folder);
std::set<std::string> NamedFiles(const std::string& folder);

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SEARCH_INDEX_READ_INDEX_H_
