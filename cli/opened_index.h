// Opening an index so that whatever is wrong with the file is told in plain words, and found before
// anything is written to it.
#ifndef KESTAN_CLI_OPENED_INDEX_H_
#define KESTAN_CLI_OPENED_INDEX_H_

#include <kestan/kestan.h>

#include <string>

namespace kestan_cli {

// What a command is going to do with an index.
enum class Access {
  kRead,    // look
  kWrite,   // change one that exists
  kCreate,  // change it, or make a new one of a path without a file or with an empty one
};

// What can be told about an index before the engine opens it.
struct IndexFacts {
  bool had_documents = false;        // it has, or once had, a document
  unsigned long free_codes = 65535;  // how many documents can still be added
};

// Looks at the file at `path`, and writes nothing to it.
//   Throws   CommandError "cannot open index 'PATH': REASON" if it is not there, cannot be read,
//            or is not an index.
IndexFacts ExamineIndex(const std::string& path, Access access);

// Holds an index open in the engine; closes it when it goes.
class OpenedIndex {
 public:
  // Opens the index at `path` after ExamineIndex has accepted it. Borrows `engine`, whose index
  // must be closed, and of which a process has only one.
  //   Throws   what ExamineIndex throws, and the same if it cannot be opened for `access`.
  OpenedIndex(Kestan& engine, const std::string& path, Access access);
  ~OpenedIndex() { engine_.CloseIndex(); }
  OpenedIndex(const OpenedIndex&) = delete;
  OpenedIndex& operator=(const OpenedIndex&) = delete;

  Kestan& engine() { return engine_; }
  const std::string& path() const { return path_; }
  const IndexFacts& facts() const { return facts_; }

  // Throws CommandError if `error`, a result of the engine's, says that the file refused a record.
  void CheckWritten(int error) const;

  // Writes out all changes; every command that changes the index ends with it.
  //   Throws   CommandError if the file refuses them.
  void Save();

 private:
  Kestan& engine_;
  const std::string path_;
  const IndexFacts facts_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_OPENED_INDEX_H_
