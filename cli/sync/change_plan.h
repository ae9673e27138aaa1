// SPDX-License-Identifier: GPL-3.0-or-later
// What is to be done to bring an index up to date, as far as it shows without reading a file.
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

namespace kestan_cli {

// A document of the index.
struct KnownDocument {
  std::string name;
  std::optional<Fingerprint> fingerprint;  // of the file that was indexed
};

// A file to read.
struct Candidate {
  FoundFile file;
  bool is_indexed = false;                 // there is a document of its name
  std::optional<Fingerprint> fingerprint;  // of the file that was indexed
  std::vector<KnownDocument> parts{};      // the documents that were made of its parts
};

// Documents whose files have vanished. A new file with the same content takes over such a document.
class VanishedDocuments {
 public:
  void Add(const KnownDocument& document);

  // Finds a document that was made of the same bytes as the file of `fingerprint`; if there are
  // several, one that `is_preferred`.
  //   Returns  nullptr if there is none. The table owns it until Take().
  const KnownDocument* Find(const Fingerprint& fingerprint,
                            const std::function<bool(const KnownDocument&)>& is_preferred) const;

  // Removes what Find() has returned.
  void Take(const KnownDocument& document);

  // Returns the names of those that are left, in order of their bytes.
  const std::set<std::string>& names() const { return names_; }

  // Returns the path of the file that the document `name` was made of, or of a part of it.
  std::string FileOf(const std::string& name) const;

 private:
  std::multimap<std::string, KnownDocument> by_content_;
  std::set<std::string> names_;
  std::map<std::string, std::string> containers_;  // of parts, by their names
};

// A part of a container whose name a file has now.
struct PartRename {
  std::string from;
  std::string to;
  Fingerprint fingerprint;
};

struct ChangePlan {
  std::vector<PartRename> renames;  // before anything else
  std::vector<Candidate> to_read;   // in order of their names
  std::uint64_t bytes_to_read = 0;
  unsigned long unchanged = 0;
  bool all = false;  // index unchanged files again too
  VanishedDocuments vanished;
};

// Compares `files` with `all_documents`, both in order of the bytes of their names. A document
// whose file is not among the files has vanished if `has_vanished` says so of the file. With `all`,
// every file is to be read. A document that is a part of a container and has the name of a file
// gives way to it: it gets a name with one more "#".
ChangePlan PlanChanges(const std::vector<FoundFile>& files,
                       std::vector<KnownDocument> all_documents,
                       const std::function<bool(const std::string&)>& has_vanished, bool all);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_CHANGE_PLAN_H_
