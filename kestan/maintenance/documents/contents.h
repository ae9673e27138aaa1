// SPDX-License-Identifier: GPL-3.0-or-later
// What an index holds: its documents and its words.
#ifndef KESTAN_MAINTENANCE_DOCUMENTS_CONTENTS_H_
#define KESTAN_MAINTENANCE_DOCUMENTS_CONTENTS_H_

#include <kestan/format/posting.h>
#include <kestan/storage/database.h>
#include <kestan/storage/memory/memory.h>

#include <cstdint>
#include <limits>
#include <string_view>

namespace kestan {

using WordId = std::uint32_t;  // a word's place among all words in order of their bytes
inline constexpr WordId kNoWord = std::numeric_limits<WordId>::max();

struct Document {
  Code code;
  std::uint32_t timestamp;
  String name;
};

// Fetches the value of `key`. One that is not there makes `*value` null.
//   Returns  0, or gdbm's number of a read failure.
int ReadRecord(Database& store, std::string_view key, DBDatumPtr* value);

// What the keys of an index say; reading the postings takes it.
class Contents {
 public:
  // Reads the keys of `store`, and the records of documents. To be called once.
  //   Returns  0 or gdbm's error number.
  int Gather(Database& store);

  bool has_positions() const { return has_positions_; }
  const Vector<Document>& documents() const { return documents_; }  // by ascending code
  const Vector<String>& words() const { return words_; }            // in order of their bytes

  // Returns the folded form of `word`, which is recorded wherever `word` is; kNoWord if `word` is
  // its own folded form, or the other has no record.
  WordId FoldedWord(WordId word) const { return folded_words_[word]; }

 private:
  int SortKeys(Database& store, Vector<String>* document_keys);
  int ReadDocumentRecords(Database& store, const Vector<String>& keys);
  int ReadDocumentRecord(Database& store, const String& key);
  void DropKeysOfEmptyName();
  void FindFoldedWords();
  WordId Find(const String& word) const;

  bool has_positions_ = true;
  Vector<Document> documents_;
  Vector<String> words_;
  Vector<WordId> folded_words_;  // by word
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_DOCUMENTS_CONTENTS_H_
