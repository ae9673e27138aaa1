// The records that an index keeps for a document.
#ifndef KESTAN_CLI_INDEX_DOCUMENT_RECORDS_H_
#define KESTAN_CLI_INDEX_DOCUMENT_RECORDS_H_

#include <optional>
#include <string>
#include <vector>

#include "cli/files/fingerprint.h"
#include "cli/index/opened_index.h"

namespace kestan_cli {

// A document of an index.
struct IndexedDocument {
  std::string name;
  std::optional<Fingerprint> fingerprint;  // of the file that was indexed
};

// Returns the names of the documents of an open index, in order of their bytes.
std::vector<std::string> DocumentNames(Kestan& engine);

// Returns the documents of an open index, in order of the bytes of their names.
std::vector<IndexedDocument> IndexedDocuments(Kestan& engine);

// Throws CommandError if the open index has no document `name`.
void CheckIndexed(const OpenedIndex& index, const std::string& name);

// Returns the user record of `name`, empty if there is none.
std::string UserRecord(Kestan& engine, const std::string& name);

// Removes the document `name`, if there is one, with its title, summary and user record.
//   Throws   CommandError, with nothing removed, if a record that is needed cannot be read.
void RemoveDocument(const OpenedIndex& index, const std::string& name);

// Renames the document `from` to `to`, which no document has, with its title, summary and user
// record. Its words are not indexed again.
//   Throws   CommandError if the index refuses it.
void MoveDocument(OpenedIndex& index, const std::string& from, const std::string& to);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_DOCUMENT_RECORDS_H_
