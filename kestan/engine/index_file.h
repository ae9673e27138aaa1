// One index file, read without anything that belongs to the process.
#ifndef KESTAN_ENGINE_INDEX_FILE_H_
#define KESTAN_ENGINE_INDEX_FILE_H_

#include <kestan/query/index_reader.h>
#include <kestan/storage/database.h>
#include <kestan/storage/export.h>

namespace kestan {

// An index file that is open for reading: its documents, words, side records and counts, as
// IndexReader describes them. There may be any number of them at once, also beside a Kestan, each
// used by one thread at a time.
//
//   kestan::IndexFile file;
//   if (file.Open("my.index") != 0) return 1;
//   const kestan::WordPostings postings = file.FindWord("hello");
//   for (kestan::WordPostings::Cursor cursor(postings); cursor.Next();) Use(cursor.code());
//
// Prints nothing while a file is open.
class KESTAN_EXPORT IndexFile : public IndexReader {
 public:
  IndexFile() : IndexReader(store_) {}  // which only keeps the reference

  // Opens the index at `path`, which must exist. Nothing is written to it.
  //   Returns  0; -1 if a file is open already, which stays open; or gdbm's error number: see
  //            StoreError.
  int Open(const char* path) { return store_.Open(path, 0); }

  // Closes the file. Postings and side records that somebody holds stay. Closing twice is no error.
  void Close() { store_.Close(); }

  // Returns 0 if every record asked for since Open() could be read, else the number of the first
  // error.
  int FileError() const { return store_.FileError(); }

  // Lends the store to what works on one: CheckIndex(), ReadStatistics(), ReadDocuments() ...
  Database& store() { return store_; }

 private:
  Database store_;
};

}  // namespace kestan

#endif  // KESTAN_ENGINE_INDEX_FILE_H_
