// What an index lacks, going by what is known without reading a file.
#ifndef KESTAN_CLI_SYNC_CHANGE_PLAN_H_
#define KESTAN_CLI_SYNC_CHANGE_PLAN_H_

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cli/files/fingerprint.h"
#include "cli/files/scan.h"
#include "cli/index/document_records.h"

namespace kestan_cli {

// A file to read.
struct Candidate {
  FoundFile file;
  bool is_indexed = false;                 // there is a document of its name
  std::optional<Fingerprint> fingerprint;  // of the file that was indexed
};

// Documents whose files have vanished, to be given to files that have their content.
class VanishedDocuments {
 public:
  void Add(const IndexedDocument& document);

  // Finds one that was made of the same bytes as the file of `fingerprint`: one that
  // `is_preferred`, if there is any.
  //   Returns  nullptr if there is none. The table owns it, until it is taken out.
  const IndexedDocument* Find(
      const Fingerprint& fingerprint,
      const std::function<bool(const IndexedDocument&)>& is_preferred) const;

  // Takes out what Find() has returned.
  void Take(const IndexedDocument& document);

  // The names of those that are left, in order of their bytes.
  const std::set<std::string>& names() const { return names_; }

 private:
  std::multimap<std::string, IndexedDocument> by_content_;
  std::set<std::string> names_;
};

struct ChangePlan {
  std::vector<Candidate> to_read;  // in order of their names
  std::uint64_t bytes_to_read = 0;
  unsigned long unchanged = 0;
  bool all = false;  // to be indexed anew even where nothing has changed
  VanishedDocuments vanished;
};

// Compares `files` with `documents`, both in order of the bytes of their names. Documents vanished
// are those at or below `roots` (as NameOf has them) that are not among the files and of which
// `has_vanished` says so. With `all`, every file is to be read.
ChangePlan PlanChanges(const std::vector<FoundFile>& files,
                       const std::vector<IndexedDocument>& documents,
                       const std::set<std::string>& roots,
                       const std::function<bool(const std::string&)>& has_vanished, bool all);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_CHANGE_PLAN_H_
