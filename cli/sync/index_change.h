// SPDX-License-Identifier: GPL-3.0-or-later
// The change that one run makes to an index.
#ifndef KESTAN_CLI_SYNC_INDEX_CHANGE_H_
#define KESTAN_CLI_SYNC_INDEX_CHANGE_H_

#include <kestan/search.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cli/console/progress.h"
#include "cli/extract/document/document.h"
#include "cli/files/fingerprint.h"
#include "cli/index/opened_writer.h"
#include "cli/sync/change_plan.h"

namespace kestan_cli {

// Keeps other writers off an index and changes it: all at once with Commit(), or not at all. Where
// there is no index, the first change makes it.
class IndexChange {
 public:
  // Takes the lock of the index folder at `path`, if there is one that this user may write, and a
  // snapshot of it. `language` is what its words are to be in, as IndexWriter takes it; "" changes
  // nothing.
  //   Throws   CommandError if there is something else, it is damaged, or another process is
  //            changing it.
  IndexChange(std::string path, ProgressStyle style, std::string language = "");
  ~IndexChange();
  IndexChange(const IndexChange&) = delete;
  IndexChange& operator=(const IndexChange&) = delete;

  const std::string& path() const { return path_; }

  // Returns the index as it was before the change; null if there was none.
  const kestan::search::IndexReader* before() const { return before_ ? &*before_ : nullptr; }

  // Returns all documents, in order of the bytes of their names.
  std::vector<KnownDocument> Documents() const;

  // Adds `document` as `name`, with the fingerprint of its file. It takes the place of the document
  // `earlier` and gets the lines that the user has written for that one; "" for none.
  void Add(const std::string& name, Document document, const Fingerprint& fingerprint,
           const std::string& earlier);

  // Adds `document` as `name`, or in its place, and gives it the lines that the user has written
  // for `noted`, which stays; "" for none.
  void AddPart(const std::string& name, Document document, const Fingerprint& fingerprint,
               const std::string& noted);

  // Renames a document, and stores the fingerprint of its file. The user's lines go with it.
  void Move(const std::string& from, const std::string& to, const Fingerprint& fingerprint);

  // Stores `fingerprint` for the document `name`, whose file has the same content as before. The
  // lines of the user are those that `noted` had before the change, or none if it is "".
  void UpdateFingerprint(const std::string& name, const Fingerprint& fingerprint,
                         const std::string& noted);

  void Remove(const std::string& name);

  // Removes all documents, so that those which are added next get words of this version. What was
  // known of them is still known here.
  void RemoveAll();

  // Keeps `value` as the property `key` of the index; an empty one takes it away.
  void SetProperty(const std::string& key, const std::string& value);

  // Returns whether there is anything to commit.
  bool HasChanges() const { return has_changes_; }

  // Commits the changes, if there are any.
  void Commit();

  // All of these throw CommandError if the index refuses the change, and Interrupted if a signal
  // has asked the process to end.

 private:
  void AddWithRecord(const std::string& name, Document document, std::string record);
  OpenedWriter& Writer();
  std::string UserRecordOf(const std::string& name) const;
  void CheckWordsAreOfThisVersion() const;
  void RemoveWhatWasMade() noexcept;

  const std::string path_;
  const ProgressStyle style_;
  const std::string language_;
  bool is_made_ = false;  // the folder, by this run
  bool has_changes_ = false;
  bool is_emptied_ = false;                     // by RemoveAll()
  std::map<std::string, std::string> renamed_;  // old names by new ones
  std::optional<OpenedWriter> writer_;
  std::optional<kestan::search::IndexReader> before_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_INDEX_CHANGE_H_
