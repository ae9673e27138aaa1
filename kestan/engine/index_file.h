// SPDX-License-Identifier: GPL-3.0-or-later
// One index file, read without anything that belongs to the process.
#ifndef KESTAN_ENGINE_INDEX_FILE_H_
#define KESTAN_ENGINE_INDEX_FILE_H_

#include <kestan/query/index_reader.h>
#include <kestan/storage/database.h>
#include <kestan/storage/export.h>
#include <kestan/storage/store_error.h>

namespace kestan {

// An index file that is open for reading: its documents, words, side records and counts, as
// IndexReader describes them. There may be any number of them at once, also beside a Kestan, each
// used by one thread at a time.
//
//   kestan::IndexFile file;
//   if (file.Open("my.index") != kestan::StoreError::kNone) return 1;
//   const kestan::WordPostings postings = file.FindWord("hello");
//   for (kestan::WordPostings::Cursor cursor(postings); cursor.Next();) Use(cursor.code());
//
// Prints nothing while a file is open.
class KESTAN_EXPORT IndexFile : public IndexReader {
 public:
  IndexFile() : IndexReader(store_) {}  // which only keeps the reference

  // Opens the index at `path`, which must exist. Nothing is written to it.
  //   Returns  StoreError::kNone; kNotOpen if a file is open already, which stays open; or why the
  //            file cannot be opened.
  StoreError Open(const char* path) { return StoreError{store_.Open(path, 0)}; }

  // Closes the file. Postings and side records that somebody holds stay. Closing twice is no error.
  void Close() { store_.Close(); }

  // Returns StoreError::kNone if every record asked for since Open() could be read, else the first
  // error.
  StoreError FileError() const { return StoreError{store_.FileError()}; }

  // Lends the store to what works on one: CheckIndex(), ReadStatistics(), ReadDocuments() ...
  Database& store() { return store_; }

 private:
  Database store_;
};

}  // namespace kestan

#endif  // KESTAN_ENGINE_INDEX_FILE_H_
