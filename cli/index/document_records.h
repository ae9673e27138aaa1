// All that an index keeps under the name of one document.
#ifndef KESTAN_CLI_INDEX_DOCUMENT_RECORDS_H_
#define KESTAN_CLI_INDEX_DOCUMENT_RECORDS_H_

#include <optional>
#include <string>
#include <vector>

#include "cli/files/fingerprint.h"
#include "cli/index/opened_index.h"

namespace kestan_cli {

// A document as an index has it.
struct IndexedDocument {
  std::string name;
  std::optional<Fingerprint> fingerprint;  // of the file that was indexed
};

// Returns the documents of an open index, in order of the bytes of their names.
std::vector<IndexedDocument> IndexedDocuments(Kestan& engine);

// Throws CommandError if the open index has no document `name`.
void CheckIndexed(const OpenedIndex& index, const std::string& name);

// Returns the user record of `name`, empty if there is none.
std::string UserRecord(Kestan& engine, const std::string& name);

// Removes the document `name`, if there is one, with its title, summary and user record.
//   Throws   CommandError, with nothing removed, if what the index has of it cannot be read.
void RemoveDocument(const OpenedIndex& index, const std::string& name);

// Gives the document `from` the name `to`, which no document has, with its title, its summary and
// its user record. Its words are not read again.
//   Throws   CommandError if the index does not take it.
void MoveDocument(OpenedIndex& index, const std::string& from, const std::string& to);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_DOCUMENT_RECORDS_H_
