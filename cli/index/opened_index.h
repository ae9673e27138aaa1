// Opening an index so that whatever is wrong with the file is told in plain words, and found before
// anything is written to it.
#ifndef KESTAN_CLI_INDEX_OPENED_INDEX_H_
#define KESTAN_CLI_INDEX_OPENED_INDEX_H_

#include <kestan/kestan.h>

#include <functional>
#include <string>

#include "cli/console/message.h"

namespace kestan_cli {

// What a command is going to do with an index.
enum class Access {
  kRead,     // look
  kInspect,  // look, however damaged it is
  kWrite,    // change one that exists
  kCreate,   // change it, or make a new one of a path without a file or with an empty one
};

// What can be told about an index before the engine opens it.
struct IndexFacts {
  bool had_documents = false;        // it has, or once had, a document
  unsigned long free_codes = 65535;  // how many documents can still be added
  unsigned long documents = 0;       // how many there are, without removed ones
};

// Looks at the file at `path`, and writes nothing to it.
//   Throws   CommandError "cannot open index 'PATH': REASON" if it is not there, cannot be read or,
//            for a change, be written, is not an index, or is damaged where that stands; with the
//            status kBusy if another process is writing it.
IndexFacts ExamineIndex(const std::string& path, Access access);

// Makes sure that a change may trust the index at `path`, and writes nothing to it: that each
// record is found by its key, for a change would write another beside one that is not, and that no
// record lies in what counts as free, where a change would overwrite it.
//   Throws   CommandError "cannot change index 'PATH': REASON" if that is not so, and as
//            ExamineIndex does.
void CheckStructure(const std::string& path);

// Looks whether the file at `path` can be read, and not at what is in it.
//   Throws   as ExamineIndex does.
void CheckFile(const std::string& path);

// Returns what to throw when records of the index at `path` could not be read: `error` is the
// store's.
CommandError CannotRead(const std::string& path, int error);

// Opens `store`, which the engine does not lend, on the file at `path`, which is called `shown` in
// messages.
//   Throws   as ExamineIndex does.
void OpenStore(Database& store, const std::string& path, Access access, const std::string& shown);
inline void OpenStore(Database& store, const std::string& path, Access access) {
  OpenStore(store, path, access, path);
}

// Returns the path of the file itself where `path` is a link, or a chain of them.
std::string RealPath(const std::string& path);

// Holds an index open in the engine; closes it when it goes.
class OpenedIndex {
 public:
  // Opens the index at `path` after ExamineIndex has accepted it. Borrows `engine`, whose index
  // must be closed, and of which a process has only one. `shown` is what the index is called in
  // messages, where that is another path.
  //   Throws   what ExamineIndex throws, and the same if it cannot be opened for `access`.
  OpenedIndex(Kestan& engine, const std::string& path, Access access)
      : OpenedIndex(engine, path, access, path) {}
  OpenedIndex(Kestan& engine, const std::string& path, Access access, std::string shown);
  ~OpenedIndex();
  OpenedIndex(const OpenedIndex&) = delete;
  OpenedIndex& operator=(const OpenedIndex&) = delete;

  Kestan& engine() const { return engine_; }
  const std::string& path() const { return path_; }
  const IndexFacts& facts() const { return facts_; }

  // Throws CommandError if `error`, a result of the engine's, says that the file refused a record.
  void CheckWritten(int error) const;

  // Throws CommandError if any record that was asked for could not be read.
  void CheckRead() const;

  // Drops what one-letter words say of the documents that had the free codes. Comes before
  // documents are added, which would else be found by the words of others.
  //   Throws   CommandError if that cannot be done.
  void PrepareCodes() const;

  // Writes out all changes made so far.
  //   Throws   CommandError if any record, now or earlier, did not reach the file.
  void Save();

  // Has `write` write out changes. Where that fails, what the engine says of each record is
  // dropped.
  void WriteOut(const std::function<void()>& write) const;

  // Saves, closes the index and makes sure that it opens again. No other call may follow.
  void Close();

 private:
  Kestan& engine_;
  const std::string file_;
  const std::string path_;  // what the index is called
  const IndexFacts facts_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_OPENED_INDEX_H_
