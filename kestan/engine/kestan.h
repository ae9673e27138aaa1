// SPDX-License-Identifier: GPL-3.0-or-later
// The engine: one class, through which a host indexes documents and asks for words.
#ifndef KESTAN_ENGINE_KESTAN_H_
#define KESTAN_ENGINE_KESTAN_H_

#include <kestan/storage/database.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/storage/export.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

class Kestan;

namespace kestan {
class IndexReader;
// See kestan/results.h.
KESTAN_EXPORT IndexReader& ReaderOf(Kestan& engine);
KESTAN_EXPORT std::optional<std::size_t> AddWords(Kestan& engine, const char* name,
                                                  const char* text);
}  // namespace kestan

// A full-text search engine over one index file.
//
// Open an index, add documents (a name and a text), ask for words, combine the answers, list them.
//
//   Kestan engine;
//   if (engine.OpenIndex("my.index", 1) != 0) return 1;
//   engine.AddDocumentWords("greeting", "hello world");
//   int id = engine.QueryWord("hello");
//   std::fputs(engine.QueryResults(id), stdout);  // "100 greeting\n"
//   engine.FreeQueryResult(id);
//
// One engine object per process, used by one thread at a time: the scratch buffer and the result
// sets belong to the process. Another engine object may be made, but no two should be in use.
//
// Strings that come in are NUL-terminated bytes in no particular encoding; the engine only borrows
// them for the call. Text that goes out is in the scratch buffer unless said otherwise: it is the
// engine's, never to be freed, and valid until the next call that writes the buffer, which every
// method that returns text does, and DBPutWords.
//
// Diagnostics are single lines on the standard error stream. With no index open, each method that
// needs one makes the store say "Kestan: Call to database::NAME without an open database"; what it
// returns then is said below. When memory runs out, the process ends as SafeMalloc says.
// No exception leaves the engine.
class KESTAN_EXPORT Kestan {
 public:
  Kestan();
  ~Kestan();  // closes the index and releases the scratch buffer
  Kestan(const Kestan&) = delete;
  Kestan& operator=(const Kestan&) = delete;

  // ---- The index file ----

  // Opens the index at `path`. With `mode` 0 it must exist and is only read; otherwise it is read
  // and written, and created where it is missing. An index without option flags gets them.
  //   Returns  0; -1 if an index is open already, which stays open, or `path` cannot be opened, or
  //            its options or reusable codes cannot be read.
  //   Prints   "Kestan: Index file is already open" in the first case, nothing in the second.
  int OpenIndex(const char* path, int mode);

  // Writes out what waits and closes the index. Closing twice is no error.
  //   Returns  0 always. Prints what the store prints for records that it could not write.
  int CloseIndex();

  // Writes out what waits and drops it from memory. The index is whole on the disk afterwards.
  //   Returns  0 always. Prints what the store prints for records that it could not write.
  int FlushIndex();

  // Returns 0 if every record asked for since OpenIndex could be read and every change has reached
  // the file, as far as it had to by now; else the number of the first error, which
  // Database::ErrorString explains. A host that must know asks after CloseIndex.
  int FileError() const { return store_.FileError(); }

  // Copies every record, with changes that wait to be written, into the index at `path`, which is
  // created where it is missing; records that it has already stay unless their keys are the same.
  // Flushes this index and the copy after the 1001st record, and then after every 1000 more. Ends
  // at a record that cannot be read; FileError() then has the error.
  //   Returns  0; -1 if `path` cannot be opened; else gdbm's error number from closing the copy.
  //   Prints   "Kestan: Could not open index file 'PATH' -- ERROR", without a line break.
  int CopyIndexTo(const char* path);

  // ---- Options ----

  // Returns the option flags of the open index, as they were loaded or set last.
  unsigned long Options() const;

  // Loads the option flags from the index; stores 0 where there are none. Flags that cannot be read
  // change nothing. OpenIndex has done it.
  void GetOptions();

  // Stores the option flags in the index.
  //   Returns  0, -1 without an index, or gdbm's error number.
  int PutOptions();

  // Sets `flags` (their low 32 bits), unless any one of them is set already: then changes nothing.
  // Flag 1 drops the positions of every word, for good; the other flags are the host's own.
  //   Returns  0; -1 if `flags` is 0; -3 with nothing changed if they hold flag 1 and not every
  //            record of the index can be read.
  int SetOptionFlag(unsigned long flags);

  // Clears `flags` (their low 32 bits).
  //   Returns  0; -1 if `flags` is 0; -2 with nothing changed if they hold flag 1 and any one of
  //            them is set, for dropped positions cannot come back.
  int UnsetOptionFlag(unsigned long flags);

  // ---- A title, a summary and a free-form record for each name ----
  //
  // The engine never looks into these texts, and neither removing nor renaming a document touches
  // them. The name need not be that of a document.

  // Finds the text of `name`.
  //   Returns  the text, in the scratch buffer; a null pointer if there is none or no index.
  char* DBGetUser(const char* name);
  char* DBGetSummary(const char* name);
  char* DBGetTitle(const char* name);

  // Stores `text` for `name` in the file at once, in place of an earlier one. Copies both.
  //   Returns  0, -1 without an index, or gdbm's error number.
  int DBPutUser(const char* name, const char* text);
  int DBPutSummary(const char* name, const char* text);
  int DBPutTitle(const char* name, const char* text);

  // Deletes the text of `name` from the file at once.
  //   Returns  0; -1 if there is none, it cannot be read, or there is no index.
  int DBDelUser(const char* name);
  int DBDelSummary(const char* name);
  int DBDelTitle(const char* name);

  // ---- Memory ----

  // Allocate `size` bytes with malloc or realloc; `block` may be null. A size of 0 is served too.
  //   Returns  the memory, never null. The caller owns it and releases it with free.
  //   Prints   when there is no memory, "Kestan: could not allocate SIZE bytes -- REASON"; then the
  //            process ends, with errno as its exit status.
  static void* SafeMalloc(unsigned size);
  static void* SafeRealloc(void* block, unsigned size);

  // The scratch buffer and its size in bytes as its users count it; the memory behind it may be
  // larger. Null and 0 before first use. A host may read the two and never sets them.
  static char* const& WordBuf;
  static const std::uint32_t& WBSize;

  // ---- Word lists ----

  // Stores the words of `words`, which white space separates, as the list `name`, in place of an
  // earlier one. Keeps the first 127 bytes of each word. Copies both. Bytes above 127 do not come
  // back as they went in. Writes the scratch buffer.
  //   Returns  0, -1 without an index, or gdbm's error number.
  int DBPutWords(const char* name, const char* words);

  // Finds the list `name`.
  //   Returns  its words, each followed by a line feed, in the scratch buffer; an empty string if
  //            it has none; a null pointer if there is no such list or no index.
  char* DBGetWords(const char* name);

  // ---- Cleaning text before it is indexed ----
  //
  // Each works in place on `length` bytes at `text` and returns the new number of bytes. What a
  // letter and white space are, the locale of the process says; by default, letters are A-Z, a-z.

  // Keeps words (letters, with apostrophes inside them), one blank between two, and the line feeds
  // after other bytes than letters. The buffer needs room for `length` + 1 bytes: the last blank
  // may land on the last one. Where the text got shorter, a NUL takes the place of that blank.
  static int StripNonWords(char* text, unsigned length);

  // Drops words of one or two letters and stop words, whatever their case; takes apostrophes out
  // of words and cuts them after 64 letters. Separators stay. Stop words are the words of
  // `stopText`, which anything but letters separates, and the strings of `stopList`, which ends
  // with a null pointer; neither may be null. With an empty `stopText` no word is dropped at all.
  // Where the text got shorter, a NUL follows it.
  static int StripWords(char* text, unsigned length, const char* stopText,
                        const char* const* stopList);

  // Empties the lines that carry encoded data: blocks of uuencode and of base64, and every line
  // with a byte above 127. Keeps the number of lines. Writes no NUL.
  static int StripBadLines(char* text, unsigned length);

  // ---- Documents ----

  // Indexes the words of `text`, which white space separates, as the document `name`, in place of
  // an earlier one. Every word is recorded as it stands and, where that differs, with bit 5 set in
  // each byte, which makes capital letters lower case. Either string may be in the scratch buffer.
  //   Returns  the words that the index had never seen, in order of their bytes, each followed by
  //            a line feed, in the scratch buffer; a constant empty string if none is open; if the
  //            index is full, where an earlier version is removed all the same; or with nothing
  //            changed if the code counter, or what it takes to remove an earlier version, cannot
  //            be read. A word whose record cannot be read is left out.
  //   Prints   "Kestan: Too many documents (max=65535) -- try shrinking database" when it is full;
  //            "Kestan: Posting record of 'WORD' is full -- entry left out" where a record would
  //            pass 2,147,483,647 bytes. An index whose list of reusable codes holds a 0 makes it
  //            print "Kestan: Attempted to use code #0 (oops!)" and end the process with status 1.
  const char* AddDocumentWords(const char* name, const char* text);

  // Takes the document `name` out of the index. Queries no longer list it; its postings stay until
  // ShrinkIndex, and its title, summary and user record until the host deletes them.
  //   Returns  0; 1 if there is no such document or no index; -1 with nothing changed if the
  //            document's record or the list of removed documents cannot be read.
  int RemoveDocumentWords(const char* name);

  // Renames a document and renews its timestamp. Its title, summary and user record keep the old
  // name. A document that has the new name already is not removed first, so remove it before.
  //   Returns  0; -1 if there is no document `oldname` or no index, or its name record is missing;
  //            -2 with nothing changed if one of its two records cannot be read.
  //   Prints   where the name record is missing
  //            "Kestan: Could not fetch document for code CODE (oops!)".
  int MoveDocumentWords(const char* oldname, const char* newname);

  // Returns when the document `name` was added or last moved, in seconds since 1970; 0 if there is
  // no such document or no index.
  std::uint32_t DocumentTimestamp(const char* name);

  // Purges the postings of removed documents, makes their codes reusable and compacts the file.
  // The postings of one-byte words are not purged: see PurgeShortWords. If a record cannot be read,
  // no code becomes reusable.
  //   Returns  0; -1 without an index.
  int ShrinkIndex();

  // Purges the words that ShrinkIndex passes over, words of one byte, and of two where the second
  // is
  // '-', of the postings of codes that the next documents may get. A host that calls it before it
  // adds documents never finds a document by such a word of the one that had its code before. With
  // `removed_too`, purges the postings of removed documents as well: useful right before
  // ShrinkIndex, which then gives their space back.
  //   Returns  0; -1 without an index; -2 with nothing changed if the posting record of such a word
  //            is damaged and has postings of codes that the next documents may get; else gdbm's
  //            error number, and what was purged is unspecified.
  //   Cost     some 512 look-ups, and the reading of the postings of such words.
  int PurgeShortWords(bool removed_too = false);

  // ---- Queries ----
  //
  // A query answers with the id of a result set, which the process keeps until FreeQueryResult.
  // Ids start at 1 and are never used twice. Combining and listing leave their operands as they
  // are. Removed documents stay in result sets until ShrinkIndex; listing leaves them out.

  // Finds the documents that hold `word`, byte for byte. A document's score is how often it does.
  //   Returns  an id; -1 if the index has no such word or none is open.
  int QueryWord(const char* word);

  // Finds the documents in both sets. With a `distance` k above 0 the words must stand at most k
  // places apart, in either order; with 0, anywhere. Scores add up, more for close words. The
  // positions are those of `second`, so that a chain measures from the word matched last.
  //   Returns  an id; -1 if either set is unknown.
  int QueryAnd(int first, int second, int distance);

  // Finds the documents in either set. Scores add up.
  //   Returns  an id; -1 if both sets are unknown. A single unknown set counts as empty.
  int QueryOr(int first, int second);

  // Finds the documents that are not in the set, all with score 0. An unknown set counts as empty.
  //   Returns  an id.
  //   Prints   "Kestan: Could not locate global-code (oops!)" if the index never had a document or
  //            none is open; then the process ends with status 1.
  int QueryNegate(int id);

  // Lists a set: a line "PERCENT NAME" for each document, by ascending document code. The
  // percentage is of the best score listed.
  //   Returns  the lines, in the scratch buffer; a constant empty string if the set is unknown.
  char* QueryResults(int id);

  // Releases a set. Unknown ids are ignored.
  void FreeQueryResult(int id);

  // ---- The collection ----

  // Lists the words found in at least `low` and at most `high` documents. A number from 0 up to,
  // not including, 1 is a share of the documents; from 1 on it is a count. A negative `high` is no
  // limit. Removed documents count until ShrinkIndex.
  //   Returns  the words, each followed by a line feed, in the file's order, in the scratch buffer;
  //            a constant empty string if the index never had a document or none is open.
  char* CommonWords(double low, double high);

  // Lists the documents.
  //   Returns  their names, as CommonWords returns words.
  char* ListDocuments();

 private:
  friend kestan::IndexReader& kestan::ReaderOf(Kestan& engine);
  friend std::optional<std::size_t> kestan::AddWords(Kestan& engine, const char* name,
                                                     const char* text);

  bool LoadOptions();
  bool LoadReusableCodes();
  bool IsOpen() const { return AvailCodes.ptr != nullptr; }
  bool KeepsPositions() const;
  const DBDatum& ReusableCodes() const;

  // Adds as AddDocumentWords() does, with the new words in the scratch buffer.
  //   Returns  their number; no value where AddDocumentWords() returns the constant.
  std::optional<std::size_t> AddWords(const char* name, const char* text);

  Database store_;
  DBDatumPtr AvailCodes;          // the reusable codes: the value of "g-avail"; null while closed
  std::uint32_t OptionFlags = 0;  // the value of "g-opts"
  std::unique_ptr<kestan::IndexReader> reader_;
};

#endif  // KESTAN_ENGINE_KESTAN_H_
